// Window styles, button numbers and keys, as the resource scripts need them.
// The C++ code has them from the platform's headers instead.
#pragma once

// Buttons that every dialog knows
#define IDOK 1
#define IDCANCEL 2

// Windows
#define WS_POPUP 0x80000000
#define WS_CHILD 0x40000000
#define WS_VISIBLE 0x10000000
#define WS_DISABLED 0x08000000
#define WS_BORDER 0x00800000
#define WS_VSCROLL 0x00200000
#define WS_GROUP 0x00020000
#define WS_TABSTOP 0x00010000

// Statics
#define SS_CENTER 0x0001
#define SS_NOPREFIX 0x0080

// Edit boxes
#define ES_MULTILINE 0x0004
#define ES_PASSWORD 0x0020
#define ES_AUTOVSCROLL 0x0040
#define ES_AUTOHSCROLL 0x0080
#define ES_READONLY 0x0800
#define ES_WANTRETURN 0x1000

// Combo boxes
#define CBS_DROPDOWNLIST 0x0003
#define CBS_SORT 0x0100

// List views
#define LVS_REPORT 0x0001
#define LVS_SINGLESEL 0x0004
#define LVS_SHOWSELALWAYS 0x0008

// Date and time pickers
#define DTS_SHORTDATEFORMAT 0x0000
#define DTS_TIMEFORMAT 0x0009

// Keys
#define VK_RETURN 0x0D
