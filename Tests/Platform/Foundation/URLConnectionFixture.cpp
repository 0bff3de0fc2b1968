#include "Tests/Platform/Foundation/URLConnectionFixture.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Tests/Platform/Foundation/QueueThread.h"

#include <condition_variable>
#include <mutex>

namespace veyra {

namespace {

DispatchQueue& queueOfLoads() {
    static auto* const thread = new QueueThread;
    static auto* const queue = new DispatchQueue(thread->context(), "main");
    return *queue;
}

class Recorder final : public NSURLConnectionDelegate {
public:
    explicit Recorder(std::function<void(NSURLConnection&)> onResponse) : _onResponse(std::move(onResponse)) {}

    void connectionDidReceiveResponse(NSURLConnection& connection, const NSURLResponse& response) override {
        note("response " + std::to_string(response.expectedContentLength) + " " + std::to_string(response.statusCode));
        if (_onResponse)
            _onResponse(connection);
    }
    void connectionDidReceiveData(NSURLConnection&, std::string_view bytes) override {
        const std::lock_guard guard(_mutex);
        if (_load.reports.empty() || _load.reports.back() != "data")
            _load.reports.push_back("data");
        _load.data += bytes;
    }
    void connectionDidFinishLoading(NSURLConnection& connection) override { end(connection, "finished"); }
    void connectionDidFailWithError(NSURLConnection& connection, const std::shared_ptr<NSError>& error) override {
        EXPECT_EQ(error->domain().utf8(), "NSURLErrorDomain");
        end(connection, "failed " + std::to_string(error->code()));
    }

    Load wait(double seconds) {
        std::unique_lock lock(_mutex);
        _ended.wait_for(lock, std::chrono::duration<double>(seconds), [&] { return _load.ended; });
        return _load;
    }

private:
    void note(const std::string& report) {
        EXPECT_TRUE(queueOfLoads().isCurrent());
        const std::lock_guard guard(_mutex);
        _load.reports.push_back(report);
    }
    void end(NSURLConnection& connection, const std::string& report) {
        note(report);
        EXPECT_FALSE(connection.isLoading());
        const std::lock_guard guard(_mutex);
        EXPECT_FALSE(_load.ended);
        _load.ended = true;
        _load.url = connection.currentRequest().URL()->absoluteString().utf8();
        _ended.notify_all();
    }

    const std::function<void(NSURLConnection&)> _onResponse;
    std::mutex _mutex;
    std::condition_variable _ended;
    Load _load; // guarded by _mutex
};

Load run(const std::string& address, double timeoutInterval, double seconds,
         const std::function<void(NSURLConnection&)>& onResponse) {
    const auto recorder = std::make_shared<Recorder>(onResponse);
    std::shared_ptr<NSURLConnection> connection;
    queueOfLoads().sync([&] {
        const auto url = NSURL::URLWithString(id(NSString(std::string_view(address))));
        connection =
            NSURLConnection::initWithRequestDelegate(NSURLRequest::requestWithURL(url, timeoutInterval), recorder);
        EXPECT_TRUE(connection && connection->isLoading()) << address;
        EXPECT_TRUE(recorder->wait(0).reports.empty()) << "nothing is reported before the maker has the connection";
    });
    Load load = recorder->wait(seconds);
    queueOfLoads().sync([&] { connection = nullptr; });
    return load;
}

} // namespace

URLConnection::URLConnection() {
    setMainQueue(&queueOfLoads());
}

Load URLConnection::load(const std::string& address, double timeoutInterval, double seconds) {
    return run(address, timeoutInterval, seconds, nullptr);
}

Load URLConnection::load(const std::string& address, const OnResponse& onResponse, double seconds) {
    return run(address, NSURLRequest::defaultTimeoutInterval, seconds, onResponse);
}

int URLConnection::failure(const std::string& address) {
    const Load done = load(address);
    if (done.reports.size() != 1 || !done.reports[0].starts_with("failed "))
        return 0;
    return std::stoi(done.reports[0].substr(7));
}

} // namespace veyra
