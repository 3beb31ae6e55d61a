// The registry: keys below three main keys, each with a class and values of any type. Names keep their case
// and are compared without regard to it. Every call returns ERROR_SUCCESS, or an error number that it sets
// as the last error too:
//   ERROR_FILE_NOT_FOUND     no such key or value
//   ERROR_INVALID_HANDLE     no open key
//   ERROR_INVALID_PARAMETER  a name or a value that is too long, or a missing argument
//   ERROR_FILENAME_EXCED_RANGE  the path of a key to be made is too long
//   ERROR_MORE_DATA          the caller's buffer is too small
//   ERROR_NO_MORE_ITEMS      the index is past the last one; only this is the end of an enumeration
//   and the object store's for a device that is full, damaged or cannot be read or written, or when there is
//   no memory.
//
// What is changed through one open key (the key itself, when it is made, and its values) is one step, which
// others see whole or not at all. It is written when the key is closed, or when the process makes any other
// call here; a process that dies before has changed nothing. So these calls, too, fail with the errors of
// writing; nothing of the step is written then, and it is given up when the key is closed. The same goes for
// a step that ends with a value that was not taken. Through a main key by its own number each change is
// written at once. What was written outlives a power cut once the process has closed all keys.
#pragma once

#include "platform/types.h"

constexpr HKEY HKEY_CLASSES_ROOT = 0x80000000;
constexpr HKEY HKEY_CURRENT_USER = 0x80000001;
constexpr HKEY HKEY_LOCAL_MACHINE = 0x80000002;

constexpr DWORD KEY_READ = 0x20019;
constexpr DWORD KEY_ALL_ACCESS = 0xF003F;

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;

constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

// Opens a key by its path below `key`, parts joined by "\"; a null or empty path opens `key` itself.
// `options` is 0; any access is granted. The caller closes *opened.
LONG RegOpenKeyExW(HKEY key, const WCHAR* path, DWORD options, DWORD access, HKEY* opened);

// Opens a key and makes it first when it is missing, with the keys above it. The class, which may be null, is
// given only to a key that is made. Parts of the path have at most 255 characters, the whole path below the
// main key, and a class, at most 259.
// `reserved`, `options` are 0 and `security` is null; *disposition, unless null, becomes REG_CREATED_NEW_KEY
// or REG_OPENED_EXISTING_KEY.
LONG RegCreateKeyExW(HKEY key, const WCHAR* path, DWORD reserved, const WCHAR* keyClass, DWORD options,
                     DWORD access, void* security, HKEY* opened, DWORD* disposition);

// Writes what was changed through the key, which is closed also when that fails. A main key's own number
// stays open.
LONG RegCloseKey(HKEY key);

// Reads a value; a null or empty name is the default value. `type`, `data` and `size` may be null. *size is
// the room at `data` in bytes and becomes the value's length, also with ERROR_MORE_DATA, which leaves `data`
// alone.
LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size);

// Makes or replaces a value of at most 1 MiB. The bytes are kept as given, whatever the type says. Names have
// at most 259 characters.
LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);

LONG RegDeleteValueW(HKEY key, const WCHAR* name);

// The subkey, or the value, at an index counted from 0, in the order of their names. An enumeration of
// a key's few values goes on, until this process changes something, with those that were there at its index
// 0. Name and class lengths are in characters: room with the terminator on entry, length without it on
// return. `reserved` and `lastWrite` are null; the class, `type`, `data` and `size` may be null. With
// ERROR_MORE_DATA for a value *size is the length that its data takes.
LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD* reserved, WCHAR* keyClass,
                   DWORD* classLength, FILETIME* lastWrite);
LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD* reserved, DWORD* type,
                   BYTE* data, DWORD* size);
