#include "Platform/MapKit/MKOverlayChanges.h"

#include <algorithm>
#include <span>
#include <unordered_map>

namespace veyra {

namespace {

using Figures = std::span<const std::shared_ptr<const MKOverlayFigure>>;

/// Marks a longest rising sequence among the numbers; those below 0 are left out.
std::vector<bool> longestRise(const std::vector<ptrdiff_t>& numbers) {
    std::vector<size_t> lasts; // of the sequences of each length: where the one with the lowest end ends
    std::vector<size_t> previous(numbers.size());
    for (size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] < 0) {
            continue;
        }
        const auto place = std::lower_bound(lasts.begin(), lasts.end(), numbers[i],
                                            [&](size_t last, ptrdiff_t number) { return numbers[last] < number; });
        previous[i] = place == lasts.begin() ? i : *std::prev(place);
        if (place == lasts.end()) {
            lasts.push_back(i);
        } else {
            *place = i;
        }
    }
    std::vector<bool> isIn(numbers.size());
    if (!lasts.empty()) {
        size_t at = lasts.back();
        for (isIn[at] = true; previous[at] != at; isIn[at] = true) {
            at = previous[at];
        }
    }
    return isIn;
}

} // namespace

MKOverlayChanges MKOverlayChanges::between(const MKOverlayFigures& before, const MKOverlayFigures& now) {
    MKOverlayChanges changes;
    Figures gone = before, come = now;
    while (!gone.empty() && !come.empty() && gone.front() == come.front()) {
        gone = gone.subspan(1);
        come = come.subspan(1);
    }
    changes.firstOnTop = before.size() - gone.size();
    changes.areOnTop = gone.empty();
    while (!gone.empty() && !come.empty() && gone.back() == come.back()) {
        gone = gone.first(gone.size() - 1);
        come = come.first(come.size() - 1);
    }
    std::unordered_map<const MKOverlayFigure*, ptrdiff_t> places;
    for (size_t i = 0; i < gone.size(); ++i) {
        places.emplace(gone[i].get(), i);
    }
    std::vector<ptrdiff_t> were(come.size(), -1);
    for (size_t i = 0; i < come.size(); ++i) {
        const auto found = places.find(come[i].get());
        were[i] = found == places.end() ? -1 : found->second;
    }
    const std::vector<bool> isKept = longestRise(were);
    std::vector<bool> hasStayed(gone.size());
    for (size_t i = 0; i < come.size(); ++i) {
        if (isKept[i]) {
            hasStayed[static_cast<size_t>(were[i])] = true;
        } else {
            changes.figures.push_back(come[i].get());
        }
    }
    for (size_t i = 0; i < gone.size(); ++i) {
        if (!hasStayed[i]) {
            changes.figures.push_back(gone[i].get());
        }
    }
    return changes;
}

} // namespace veyra
