#include "Platform/MapKit/MKDropAnimation.h"

#include <algorithm>

namespace veyra {

namespace {

constexpr double impact = 0.28;    // seconds, of the first touch of the ground
constexpr double bounceHeight = 6; // points

} // namespace

MKDropAnimation::Height MKDropAnimation::heightAt(double time) {
    if (time >= fallDuration) {
        return {0, 0};
    }
    if (time < impact) {
        const double fallen = time / impact;
        return {1 - fallen * fallen, 0};
    }
    const double bounce = (time - impact) / (fallDuration - impact);
    return {0, bounceHeight * 4 * bounce * (1 - bounce)};
}

void MKDropAnimation::addBatch(std::vector<Drop> batch) {
    const double count = static_cast<double>(batch.size());
    const double pause = count > 1 ? std::min(stagger, longestStagger / (count - 1)) : 0;
    for (size_t i = 0; i < batch.size(); ++i) {
        batch[i].delay = static_cast<double>(i) * pause;
        _drops.push_back(batch[i]);
    }
}

std::vector<MKDropAnimation::Drop> MKDropAnimation::takeAll() {
    std::vector<Drop> drops;
    drops.swap(_drops);
    return drops;
}

} // namespace veyra
