#include "export/fieldwriter.h"

#include "app/uiservices.h"
#include "platform/files.h"

namespace {

constexpr WCHAR kByteOrderMark = 0xFEFF;
constexpr WCHAR kQuote = u'"';

constexpr DWORD kPart = 256; // characters for which room is made at a time

template <bool kWide>
BYTE* PutUnit(BYTE* out, WCHAR unit) {
    *out++ = static_cast<BYTE>(unit);
    if (kWide)
        *out++ = static_cast<BYTE>(unit >> 8);
    return out;
}

// At most `most` characters; returns where the text goes on.
template <bool kWide>
const WCHAR* PutDoubledPart(BYTE*& at, const WCHAR* text, DWORD most) {
    BYTE* out = at;
    for (; most && *text; --most, ++text) {
        out = PutUnit<kWide>(out, *text);
        if (*text == kQuote)
            out = PutUnit<kWide>(out, kQuote);
    }
    at = out;
    return text;
}

bool HoldsSeparator(const WCHAR* text) {
    for (; *text; ++text)
        if (*text == u'\t' || *text == u',')
            return true;
    return false;
}

} // namespace

FieldWriter::~FieldWriter() {
    Close(false);
}

bool FieldWriter::Create(HWND owner, WCHAR* path) {
    file = CreateFileForWriting(owner, path, path, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    failed = false;
    if (unicode)
        Put(kByteOrderMark);
    return true;
}

void FieldWriter::WriteField(const WCHAR* text, bool quoted) {
    if (!text || !*text)
        return;
    quoted = quoted || HoldsSeparator(text);
    if (quoted)
        Put(kQuote);
    PutDoubled(text);
    if (quoted)
        Put(kQuote);
}

// Quirk: in 8 bits a character is cut down to its low byte, not translated. Only what is a quote in the text
// is doubled, not what becomes one by the cut.
void FieldWriter::PutDoubled(const WCHAR* text) {
    while (*text) {
        if (gathered > kBufferSize - 2 * sizeof(WCHAR) * kPart)
            Flush();
        BYTE* out = buffer + gathered;
        text = unicode ? PutDoubledPart<true>(out, text, kPart) : PutDoubledPart<false>(out, text, kPart);
        gathered = static_cast<DWORD>(out - buffer);
    }
}

void FieldWriter::WriteLineEnd() {
    Put(u'\r');
    Put(u'\n');
}

void FieldWriter::Flush() {
    DWORD written = 0;
    failed = failed || !WriteFile(file, buffer, gathered, &written, nullptr) || written != gathered;
    gathered = 0;
}

bool FieldWriter::Close(bool complete) {
    if (file == INVALID_HANDLE_VALUE)
        return false;
    Flush();
    const bool synced = complete && !failed && FlushFileBuffers(file);
    const bool closed = CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
    return synced && closed;
}
