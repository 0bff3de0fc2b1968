#include "Platform/MapKit/MKReuseQueue.h"

namespace veyra {

void MKReuseQueue::add(std::shared_ptr<MKAnnotationView> view) {
    if (_count < capacity) {
        _views[*view->reuseIdentifier()].push_back(std::move(view));
        ++_count;
    }
}

std::shared_ptr<MKAnnotationView> MKReuseQueue::take(const NSString& identifier) {
    const auto found = _views.find(identifier);
    if (found == _views.end()) {
        return nullptr;
    }
    auto view = std::move(found->second.back());
    found->second.pop_back();
    if (found->second.empty()) {
        _views.erase(found);
    }
    --_count;
    view->prepareForReuse();
    return view;
}

} // namespace veyra
