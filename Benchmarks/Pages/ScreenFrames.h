// Counts the frames that reach the screen of a virtual display, whoever draws them: samples the memory that Xvfb maps
// into its -fbdir folder. Runs a thread of its own from start to stop.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace veyra::benchmark {

class ScreenFrames {
public:
    /// `folder` is Xvfb's -fbdir. Throws std::runtime_error when there is no screen in it.
    explicit ScreenFrames(const std::string& folder);
    ~ScreenFrames();

    /// Watches the part of the screen (pixels) until `stop`.
    void start(int x, int y, int width, int height);
    struct Changes {
        std::vector<double> gaps; ///< between frames, in milliseconds, in order
        double lastChange = 0;    ///< when, in milliseconds since 1970; 0 for never
    };
    Changes stop();

private:
    uint64_t sample() const;
    void watch();

    const uint8_t* _memory = nullptr;
    size_t _size = 0;
    const uint8_t* _pixels = nullptr;
    size_t _stride = 0;
    int _x = 0, _y = 0, _width = 0, _height = 0;
    std::atomic<bool> _running{false};
    std::thread _thread;
    Changes _changes; // the thread's until it has been joined
};

} // namespace veyra::benchmark
