// Running work on the application's (GUI) thread from any thread.
#pragma once

#include <chrono>
#include <functional>

// Runs `work` on the thread of the QApplication and waits for it. On that
// thread itself it runs at once. When the GUI thread does not take the work
// within `timeout` (it is blocked, or the application is gone), the work is
// dropped and false returned: the caller never deadlocks.
bool RunOnUiThread(const std::function<void()>& work,
                   std::chrono::milliseconds timeout = std::chrono::seconds(5));

// Queues `work` for the GUI thread without waiting; false without an application.
bool PostToUiThread(std::function<void()> work);
