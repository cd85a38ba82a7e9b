// Threads of our own for computer-use calls: a serial queue, a bounded concurrent pool, a group.
#include "server/WorkQueue.h"

namespace orvo {

WorkQueue::WorkQueue(std::size_t maxThreads) : maxThreads_(maxThreads) {}

WorkQueue::~WorkQueue() {
    {
        std::lock_guard<std::mutex> guard(lock_);
        stopping_ = true;
    }
    available_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

void WorkQueue::submit(std::function<void()> work) {
    std::lock_guard<std::mutex> guard(lock_);
    pending_.push_back(std::move(work));
    if (idle_ < pending_.size() && threads_.size() < maxThreads_) {
        threads_.emplace_back([this] { run(); });
    } else {
        available_.notify_one();
    }
}

void WorkQueue::run() {
    std::unique_lock<std::mutex> guard(lock_);
    for (;;) {
        ++idle_;
        available_.wait(guard, [this] { return stopping_ || !pending_.empty(); });
        --idle_;
        if (pending_.empty()) {
            return;  // stopping, and nothing left to do
        }
        std::function<void()> work = std::move(pending_.front());
        pending_.pop_front();
        guard.unlock();
        work();
        guard.lock();
    }
}

void WorkerGroup::enter() {
    std::lock_guard<std::mutex> guard(lock_);
    ++active_;
}

void WorkerGroup::leave() {
    std::lock_guard<std::mutex> guard(lock_);
    if (--active_ == 0) {
        empty_.notify_all();
    }
}

void WorkerGroup::wait() {
    std::unique_lock<std::mutex> guard(lock_);
    empty_.wait(guard, [this] { return active_ == 0; });
}

}  // namespace orvo
