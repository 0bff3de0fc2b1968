#include "Platform/MapKit/MKAnnotationStore.h"

#include <cmath>

namespace veyra {

uint32_t MKAnnotationStore::add(const std::shared_ptr<MKAnnotation>& annotation) {
    if (find(annotation.get()) != none) {
        return none;
    }
    const auto number = _free.empty() ? static_cast<uint32_t>(_entries.size()) : _free.back();
    if (_free.empty()) {
        _entries.resize(_entries.size() + 1);
    } else {
        _free.pop_back();
    }
    if (annotation->_number == none) {
        annotation->_number = number;
    } else {
        _foreignNumbers.insert(hashOf(annotation.get()), number);
    }
    _entries[number].annotation = annotation;
    updatePoint(number);
    return number;
}

void MKAnnotationStore::remove(uint32_t number) {
    Entry& entry = _entries[number];
    if (entry.hasPoint) {
        _index.remove(number);
    }
    if (foreignNumberOf(entry.annotation.get()) == number) {
        _foreignNumbers.remove(hashOf(entry.annotation.get()), number);
    } else {
        entry.annotation->_number = none;
    }
    Entry freed;
    freed.attachSerial = entry.attachSerial; // goes on: whoever remembers the former one sees that it is over
    freed.isNewInOrder = entry.isNewInOrder; // the number stays in the list of new ones
    entry = std::move(freed);
    _free.push_back(number);
}

uint32_t MKAnnotationStore::find(const MKAnnotation* annotation) const {
    if (!annotation) {
        return none;
    }
    const uint32_t number = annotation->_number;
    if (number < _entries.size() && _entries[number].annotation.get() == annotation) {
        return number;
    }
    return foreignNumberOf(annotation);
}

uint32_t MKAnnotationStore::foreignNumberOf(const MKAnnotation* annotation) const {
    return _foreignNumbers.find(hashOf(annotation), [this, annotation](uint32_t number) {
        return _entries[number].annotation.get() == annotation;
    });
}

void MKAnnotationStore::setLift(uint32_t number, float lift) {
    if (lift == liftOf(number)) {
        return;
    }
    const size_t block = number / liftBlockSize;
    if (block >= _lifts.size()) {
        _lifts.resize(block + 1);
    }
    if (!_lifts[block]) {
        _lifts[block] = std::make_unique<LiftBlock>();
    }
    float& held = (*_lifts[block])[number % liftBlockSize];
    _lifted += lift != 0 ? 1 : 0;
    _lifted -= held != 0 ? 1 : 0;
    held = lift;
    if (_lifted == 0) {
        _lifts.clear();
        _lifts.shrink_to_fit();
    }
}

void MKAnnotationStore::updatePoint(uint32_t number) {
    const CLLocationCoordinate2D coordinate = _entries[number].annotation->coordinate();
    Entry& entry = _entries[number];
    if (entry.hasPoint) {
        _index.remove(number);
    }
    entry.hasPoint = std::isfinite(coordinate.latitude) && std::isfinite(coordinate.longitude);
    if (entry.hasPoint) {
        const double longitude = std::remainder(coordinate.longitude, 360);
        _index.insert(number, MKMapPointForCoordinate({coordinate.latitude, longitude}));
    }
}

std::vector<std::shared_ptr<MKAnnotation>> MKAnnotationStore::all() const {
    std::vector<std::shared_ptr<MKAnnotation>> annotations;
    annotations.reserve(size());
    for (size_t number = 0; number < _entries.size(); ++number) {
        if (const auto& annotation = _entries[number].annotation) {
            annotations.push_back(annotation);
        }
    }
    return annotations;
}

std::vector<uint32_t> MKAnnotationStore::numbersIn(const MKMapRect& rect) const {
    std::vector<uint32_t> numbers;
    const auto take = [&numbers](uint32_t number) { numbers.push_back(number); };
    const double height = rect.size.height;
    if (rect.size.width >= MKWorldSide) {
        _index.search(MKMapRectMake(0, rect.origin.y, MKWorldSide, height), take);
        return numbers;
    }
    const double left = rect.origin.x - std::floor(rect.origin.x / MKWorldSide) * MKWorldSide;
    const double beyond = left + rect.size.width - MKWorldSide;
    if (beyond < 0) {
        _index.search(MKMapRectMake(left, rect.origin.y, rect.size.width, height), take);
    } else {
        // Both edges of the world are one line: the two parts are a world's gap apart and share no point.
        _index.search(MKMapRectMake(left, rect.origin.y, MKWorldSide - left, height), take);
        _index.search(MKMapRectMake(0, rect.origin.y, beyond, height), take);
    }
    return numbers;
}

bool MKAnnotationStore::isIn(const MKMapRect& rect, MKMapPoint point) {
    if (point.y < rect.origin.y || point.y > MKMapRectGetMaxY(rect)) {
        return false;
    }
    const double fromLeft = point.x - rect.origin.x;
    return fromLeft - std::floor(fromLeft / MKWorldSide) * MKWorldSide <= rect.size.width;
}

} // namespace veyra
