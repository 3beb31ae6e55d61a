#include "tests/support/script.h"

#include <QCoreApplication>
#include <QTimer>
#include <memory>
#include <ucontext.h>

#include "platform/ui/core/messagequeue.h"

#if defined(__SANITIZE_ADDRESS__)
#include <pthread.h>
#include <sanitizer/common_interface_defs.h>
#define SCRIPT_UNDER_ASAN 1
#endif

namespace {

constexpr std::size_t kStackSize = 4u << 20;
// So many turns of a loop without a message mean that nothing is due.
constexpr int kQuietTurns = 2;

struct Script {
    std::function<void()> steps;
    std::unique_ptr<char[]> stack{new char[kStackSize]};
    ucontext_t own{};
    ucontext_t loop{}; // of the message loop that let it go on
    Script* outer = nullptr;
    bool finished = false;
    int wait = 0;
    const void* loopStack = nullptr;
    std::size_t loopStackSize = 0;
    void* fakeStack = nullptr;
};

Script* running = nullptr;
int unfinished = 0;

void BeforeSwitch([[maybe_unused]] void** fakeStack, [[maybe_unused]] const void* stack,
                  [[maybe_unused]] std::size_t size) {
#ifdef SCRIPT_UNDER_ASAN
    __sanitizer_start_switch_fiber(fakeStack, stack, size);
#endif
}

void AfterSwitch([[maybe_unused]] void* fakeStack, [[maybe_unused]] const void** stack,
                 [[maybe_unused]] std::size_t* size) {
#ifdef SCRIPT_UNDER_ASAN
    __sanitizer_finish_switch_fiber(fakeStack, stack, size);
#endif
}

void BackToLoop(Script& script) {
    running = script.outer;
    BeforeSwitch(script.finished ? nullptr : &script.fakeStack, script.loopStack, script.loopStackSize);
    swapcontext(&script.own, &script.loop);
    AfterSwitch(script.fakeStack, &script.loopStack, &script.loopStackSize);
}

void Begin(unsigned low, unsigned high) {
    auto* script =
        reinterpret_cast<Script*>(static_cast<std::uintptr_t>(low) | static_cast<std::uintptr_t>(high) << 32);
    AfterSwitch(nullptr, &script->loopStack, &script->loopStackSize);
    script->steps();
    script->finished = true;
    BackToLoop(*script);
}

void GoOn(Script* script) {
    script->outer = running;
    running = script;
    void* fakeStack = nullptr;
    BeforeSwitch(&fakeStack, script->stack.get(), kStackSize);
    swapcontext(&script->loop, &script->own);
    AfterSwitch(fakeStack, nullptr, nullptr);
}

void ScheduleTurn(Script* script, int quietTurns);

void Turn(Script* script, int quietTurns) {
    // A quit message is for a loop further out.
    if (ui::FindQueued(0, WM_QUIT - 1) || ui::FindQueued(WM_QUIT + 1, 0xFFFF))
        return ScheduleTurn(script, 0);
    if (quietTurns < kQuietTurns)
        return ScheduleTurn(script, quietTurns + 1);
    GoOn(script);
    if (script->finished) {
        --unfinished;
        delete script;
        return;
    }
    ScheduleTurn(script, 0);
}

void ScheduleTurn(Script* script, int quietTurns) {
    const int wait = std::exchange(script->wait, 0);
    QTimer::singleShot(wait, Qt::PreciseTimer, qApp, [script, quietTurns] { Turn(script, quietTurns); });
}

} // namespace

void StartScript(std::function<void()> steps) {
    auto* script = new Script;
    script->steps = std::move(steps);
    getcontext(&script->own);
    script->own.uc_stack.ss_sp = script->stack.get();
    script->own.uc_stack.ss_size = kStackSize;
    const auto address = reinterpret_cast<std::uintptr_t>(script);
    makecontext(&script->own, reinterpret_cast<void (*)()>(Begin), 2, static_cast<unsigned>(address),
                static_cast<unsigned>(address >> 32));
    ++unfinished;
    ScheduleTurn(script, 0);
}

bool InScript() {
    return running != nullptr;
}

void YieldScript(int milliseconds) {
    Script* script = running;
    script->wait = milliseconds;
    BackToLoop(*script);
}

int RunningScripts() {
    return unfinished;
}
