#pragma once

#include "board/backend/LoginQueue.h"

#include <condition_variable>
#include <mutex>
#include <string>

namespace VeskLib::Board {

// Makes logins wait until the LoginQueue admits them. May be used by several threads at once. Its
// state is lost when the back-end ends.
class LoginThrottle {
public:
    // An attempt to log in. If it was admitted, its destruction counts as a failure unless
    // succeeded() was called.
    class Pass {
    public:
        // Waits until the attempt is admitted or refused. `throttle` must outlive the object.
        Pass(LoginThrottle& throttle, const LoginAttempt& attempt);
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;
        ~Pass();

        bool isAdmitted() const { return admitted; }
        void succeeded() { success = true; }

    private:
        LoginThrottle& throttle;
        LoginQueue::Entry& entry;
        bool admitted = false;
        bool success = false;
    };

    // Returns LoginAttempt::guess for a password. The value is too short to identify the password.
    static std::string guessOf(const std::string& password);

    // Refuses all waiting attempts, and from now on those that would have to wait.
    void end();

private:
    LoginQueue::Entry& arrive(const LoginAttempt& attempt);
    bool wait(const LoginQueue::Entry& entry);
    void leave(LoginQueue::Entry& entry, bool succeeded);

    std::mutex guard;  // of the queue
    std::condition_variable changed;
    LoginQueue queue;
};

}  // namespace VeskLib::Board
