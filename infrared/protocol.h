// What travels between two devices (docs/formats.md). All of it is little-endian.
#pragma once

#include "platform/objectstore.h"

using TransferCode = DWORD;
constexpr TransferCode kAcknowledge = 4354;
constexpr TransferCode kRecordFollows = 4356;
constexpr TransferCode kEndOfTransfer = 4359;
constexpr TransferCode kCancel = 4360; // also stands for a link that has broken

// The database travels as its CEDBASEINFO, then record by record.
static_assert(sizeof(CEDBASEINFO) == 120);

struct RecordDescriptor {
    WORD propCount;
    WORD padding;   // 0
    DWORD reserved; // 0
    DWORD size;     // bytes of the record's block that follows
    DWORD address;  // where it lies on the sending device, which nobody else can make use of
};
static_assert(sizeof(RecordDescriptor) == 16 && offsetof(RecordDescriptor, size) == 8);

constexpr DWORD kBlockSize = 4096; // a record's block travels in pieces of at most that
