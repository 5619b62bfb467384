#pragma once

#include "board/backend/LoginQueue.h"

#include <condition_variable>
#include <mutex>
#include <string>

namespace VeskLib::Board {

// Has logins wait until the LoginQueue lets them in. May be used by several threads at once.
// Everything is forgotten when the back-end ends.
class LoginThrottle {
public:
    // An attempt that is under way. One that was admitted counts as failed when it ends, unless
    // succeeded() was called before.
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

    // What LoginAttempt::guess is for a password: too little to tell the password from it.
    static std::string guessOf(const std::string& password);

    // Nobody waits any more: what is not admitted at once is refused.
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
