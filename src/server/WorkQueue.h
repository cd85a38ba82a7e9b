// Threads of our own for computer-use calls: a serial queue, a bounded concurrent pool, a group.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orvo {

// Runs submitted work in submission order on at most `maxThreads` threads, started on demand so
// that a session without computer-use calls starts none. One thread makes it a serial queue.
class WorkQueue {
public:
    explicit WorkQueue(std::size_t maxThreads);
    // Finishes the queued work, then joins the threads.
    ~WorkQueue();
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    void submit(std::function<void()> work);

private:
    void run();

    const std::size_t maxThreads_;
    std::mutex lock_;
    std::condition_variable available_;
    std::deque<std::function<void()>> pending_;
    std::size_t idle_ = 0;
    bool stopping_ = false;
    std::vector<std::thread> threads_;
};

// Counts work items between submission and completion, so that shutdown can wait for them all.
class WorkerGroup {
public:
    void enter();
    void leave();
    void wait();

private:
    std::mutex lock_;
    std::condition_variable empty_;
    std::size_t active_ = 0;
};

}  // namespace orvo
