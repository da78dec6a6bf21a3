#include "host/files/Interrupt.h"

#include <windows.h>

#include <atomic>

namespace host {

namespace {

constexpr int None = -1;
constexpr UINT ControlCExit = 0xC000013A;  // STATUS_CONTROL_C_EXIT

std::atomic<int> pending = None;

BOOL WINAPI Note(DWORD event)
{
    pending = static_cast<int>(event);
    // For all but these two the process ends when this returns; it ends by itself first.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

}  // namespace

InterruptGuard::InterruptGuard()
{
    pending = None;
    SetConsoleCtrlHandler(Note, TRUE);
}

InterruptGuard::~InterruptGuard() { SetConsoleCtrlHandler(Note, FALSE); }

void ThrowIfInterrupted()
{
    if (pending != None)
        throw Interrupted{pending, {}};
}

void EndAs(const Interrupted&) { ExitProcess(ControlCExit); }

}  // namespace host
