// Pins that are falling onto the map: each waits for its turn, falls, and bounces a little. Times are those of frames,
// in seconds. Owned by the map's annotations; main queue only.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace veyra {

class MKDropAnimation {
public:
    /// What one fall takes.
    static constexpr double fallDuration = 0.4;
    /// The pause between two pins of a batch, and the longest time between its first and its last.
    static constexpr double stagger = 0.03;
    static constexpr double longestStagger = 0.6;

    struct Drop {
        uint32_t number;
        uint32_t attachSerial;
        double delay;
        std::optional<double> start; // of the batch: its first frame
    };

    /// How high above its place a pin is at a time after the start of its fall: a part of the whole height in [0, 1]
    /// and, on top of it, points.
    struct Height {
        double part, points;
    };
    static Height heightAt(double time);

    /// Adds pins that fall together, the first ones first.
    void addBatch(std::vector<Drop> batch);
    bool isEmpty() const { return _drops.empty(); }

    /// Calls `move(drop, height)` for every pin at `timestamp`, `height` being null for one that still waits for its
    /// turn, and forgets those that have come to rest. `move` may not add batches.
    template <class Move>
    void step(double timestamp, const Move& move) {
        size_t kept = 0;
        for (Drop& drop : _drops) {
            if (!drop.start) {
                drop.start = timestamp;
            }
            const double time = timestamp - *drop.start - drop.delay;
            if (time < 0) {
                move(drop, static_cast<const Height*>(nullptr));
            } else {
                const Height height = heightAt(time);
                move(drop, &height);
            }
            if (time < fallDuration) {
                _drops[kept++] = drop;
            }
        }
        _drops.resize(kept);
        if (kept == 0) {
            _drops.shrink_to_fit(); // there may have been many
        }
    }
    /// Forgets all pins and hands them out.
    std::vector<Drop> takeAll();

private:
    std::vector<Drop> _drops;
};

} // namespace veyra
