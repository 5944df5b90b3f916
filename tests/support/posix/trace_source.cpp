// The viewer of the trace: binds the socket and reads it in a thread, since the system queues few lines at a time.
#include "support/trace_source.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace kesta::test {
namespace {

constexpr size_t kLongestLine = 256 * 1024;

class Viewer : public TraceSource {
public:
    explicit Viewer(const std::filesystem::path& runtimeFolder)
        : path_(runtimeFolder / "kesta_db.trace"),
          socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)),
          stop_(eventfd(0, EFD_CLOEXEC)),
          buffer_(kLongestLine)
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const std::string name = path_.string();
        if (name.size() >= sizeof address.sun_path) {
            throw std::runtime_error("too long for a socket: " + name);
        }
        std::memcpy(address.sun_path, name.c_str(), name.size() + 1);
        if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            throw std::runtime_error(name + ": " + std::strerror(errno));
        }
        thread_ = std::thread([this] { run(); });
        // On a busy machine the library would drop lines that nobody reads in time. Not everybody may ask for this.
        sched_param priority = {};
        priority.sched_priority = 1;
        (void)pthread_setschedparam(thread_.native_handle(), SCHED_RR, &priority);
    }

    ~Viewer() override
    {
        const uint64_t one = 1;
        (void)!write(stop_, &one, sizeof one);
        thread_.join();
        close(socket_);
        close(stop_);
        unlink(path_.c_str());
    }

    /// A line is in the socket's queue when the writing call returns, so an emptied queue leaves none out.
    std::vector<std::string> take() override
    {
        const std::scoped_lock lock(mutex_);
        drain();
        return std::move(lines_);
    }

private:
    void run()
    {
        pollfd events[2] = {{socket_, POLLIN, 0}, {stop_, POLLIN, 0}};
        while (events[1].revents == 0) {
            (void)poll(events, 2, -1);
            const std::scoped_lock lock(mutex_);
            drain();
        }
    }

    /// Under the lock, so that no line is in neither queue nor list when somebody else looks.
    void drain()
    {
        for (;;) {
            const ssize_t size = recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
            if (size >= 0) {
                lines_.emplace_back(buffer_.data(), static_cast<size_t>(size));
            } else if (errno != EINTR) {
                return;
            }
        }
    }

    std::filesystem::path path_;
    int socket_;
    int stop_;
    std::vector<char> buffer_;
    std::mutex mutex_;
    std::vector<std::string> lines_;
    std::thread thread_;
};

}  // namespace

std::unique_ptr<TraceSource> TraceSource::open(const std::filesystem::path& runtimeFolder)
{
    return std::make_unique<Viewer>(runtimeFolder);
}

}  // namespace kesta::test
