#include "Benchmarks/Pages/ScreenFrames.h"

#include <chrono>
#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veyra::benchmark {

namespace {

using Clock = std::chrono::steady_clock;

// Rows and columns that are looked at: any map that moves changes some of them.
constexpr int rowStep = 13, columnStep = 7;
constexpr double shortestGap = 3; // ms: a frame that arrives in two parts is one

double millisecondsSince1970() {
    return std::chrono::duration<double, std::milli>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace

ScreenFrames::ScreenFrames(const std::string& folder) {
    const std::string path = folder + "/Xvfb_screen0";
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0)
        throw std::runtime_error("no screen at " + path);
    _size = static_cast<size_t>(status.st_size);
    void* memory = mmap(nullptr, _size, PROT_READ, MAP_SHARED, file, 0);
    close(file);
    if (memory == MAP_FAILED)
        throw std::runtime_error("cannot map " + path);
    _memory = static_cast<const uint8_t*>(memory);
    // An X window dump: a header of big-endian words, a table of colours, the pixels.
    const auto word = [this](size_t i) {
        const uint8_t* b = _memory + 4 * i;
        return static_cast<uint32_t>(b[0] << 24 | b[1] << 16 | b[2] << 8 | b[3]);
    };
    _stride = word(12);
    _pixels = _memory + word(0) + size_t(word(19)) * 12;
}

ScreenFrames::~ScreenFrames() {
    stop();
    munmap(const_cast<uint8_t*>(_memory), _size);
}

uint64_t ScreenFrames::sample() const {
    uint64_t hash = 1469598103934665603u;
    for (int y = _y; y < _y + _height; y += rowStep) {
        const auto* row = reinterpret_cast<const uint32_t*>(_pixels + static_cast<size_t>(y) * _stride);
        for (int x = _x; x < _x + _width; x += columnStep)
            hash = (hash ^ row[x]) * 1099511628211u;
    }
    return hash;
}

void ScreenFrames::start(int x, int y, int width, int height) {
    _x = x;
    _y = y;
    _width = width;
    _height = height;
    _changes = {};
    _running = true;
    _thread = std::thread([this] { watch(); });
}

void ScreenFrames::watch() {
    uint64_t shown = sample();
    auto last = Clock::now();
    bool first = true;
    while (_running) {
        const uint64_t now = sample();
        const auto time = Clock::now();
        const double gap = std::chrono::duration<double, std::milli>(time - last).count();
        if (now != shown)
            _changes.lastChange = millisecondsSince1970();
        if (now != shown && (first || gap > shortestGap)) {
            if (!first)
                _changes.gaps.push_back(gap);
            first = false;
            last = time;
        }
        shown = now;
        std::this_thread::sleep_for(std::chrono::microseconds(900));
    }
}

ScreenFrames::Changes ScreenFrames::stop() {
    _running = false;
    if (_thread.joinable())
        _thread.join();
    return std::move(_changes);
}

} // namespace veyra::benchmark
