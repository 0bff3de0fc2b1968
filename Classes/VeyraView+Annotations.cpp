// The registry of annotations. Scripts' arguments are checked and records made on the script's thread; what the
// registry and the map make of them happens on the main queue, in the order of the calls.
#include "Classes/VeyraAnnotationSO.h"
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/Foundation/NSException.h"

#include <utility>

namespace veyra {

namespace {

constexpr const char* cannotSelect = "Map does not have annotation with Id '%@'; cannot select";
constexpr const char* cannotDeselect = "Map does not have annotation with Id '%@'; cannot deselect";
constexpr const char* cannotRemove = "Map does not have annotation with Id '%@'; cannot remove";

bool isNothing(const id& identifier) {
    return identifier.isNil() || identifier.isUndefined();
}

const std::vector<NSString>& requiredKeys() {
    static const auto* const keys = new std::vector<NSString>{
        kOstrelAnnotationLatitude,
        kOstrelAnnotationLongitude,
        kOstrelAnnotationIdentifier,
    };
    return *keys;
}

/// The keys of an element in the order in which `makeRecord` reads them: the check, the identifier, the record.
const ScriptKeySequence& keysOfRecord() {
    using enum ScriptKeyValue;
    static const auto* const sequence = new ScriptKeySequence{
        .keys = {{kOstrelAnnotationLatitude, Present},
                 {kOstrelAnnotationLongitude, Present},
                 {kOstrelAnnotationIdentifier, Present},
                 {kOstrelAnnotationIdentifier, String},
                 {kOstrelAnnotationLatitude, Convertible},
                 {kOstrelAnnotationLongitude, Convertible},
                 {kOstrelAnnotationIdentifier, Any},
                 {kOstrelAnnotationTitle, Any},
                 {kOstrelAnnotationSubtitle, Any},
                 {kOstrelAnnotationImageURL, Any},
                 {kOstrelAnnotationXOffset, Convertible},
                 {kOstrelAnnotationYOffset, Convertible},
                 {kOstrelAnnotationHasLeftCallout, Convertible},
                 {kOstrelAnnotationHasRightCallout, Convertible},
                 {kOstrelAnnotationPinColor, Convertible},
                 {kOstrelAnnotationPinAnimatesDrop, Convertible},
                 {kOstrelAnnotationIsDraggable, Any}},
        .isAll = true,
    };
    return *sequence;
}

/// The record for a script's annotation object, or null when that was refused, and reported.
std::shared_ptr<VeyraAnnotationSO> makeRecord(const id& annotation, const id& caller) {
    if (!VeyraValidateWebScriptObject(annotation, nullptr, caller, requiredKeys()))
        return nullptr;
    if (annotation.object()->valueForKey(kOstrelAnnotationIdentifier).isString())
        return VeyraAnnotationSO::initWithWebScriptObject(*annotation.object());
    WebScriptObject::throwException("Annotation identifiers must be of type string");
    return nullptr;
}

} // namespace

void VeyraView::addAnnotation(const id& annotation) {
    const id caller = callerName("addAnnotation:");
    std::shared_ptr<VeyraAnnotationSO> record;
    withKeysReadAhead(annotation, keysOfRecord(), [&](const id& object) { record = makeRecord(object, caller); });
    if (record)
        onMainQueue([this, record = std::move(record)] { _internalAddAnnotation(record); });
}

void VeyraView::addAnnotations(const id& annotations) {
    const id caller = callerName("addAnnotations:");
    if (!VeyraValidateWebScriptObject(annotations, nullptr, caller, {"length"}))
        return;
    std::vector<std::shared_ptr<VeyraAnnotationSO>> records;
    bool lastWasUndefined = false;
    forEachElement(annotations, keysOfRecord(), [&](const id& element) {
        // Of undefined elements in a row the first has said it all: a false length costs as little as it can.
        if (std::exchange(lastWasUndefined, element.isUndefined()) && lastWasUndefined)
            return;
        try {
            if (auto record = makeRecord(element, caller))
                records.push_back(std::move(record));
        } catch (const NSException& exception) { // a value without a conversion spoils its own element alone
            WebScriptObject::throwException(exception.reason());
        }
    });
    onMainQueueInSlices([this, records = std::move(records), next = size_t{0}](int64_t end) mutable {
        _mapView->setAwaitsMoreAnnotations(true); // one batch is one to the page and on the screen
        for (bool isTime = true; isTime && next < records.size(); isTime = g_get_monotonic_time() < end) {
            const auto record = std::move(records[next++]);
            runGuarded("addAnnotations", [&] { _internalAddAnnotation(record); });
        }
        _mapView->setAwaitsMoreAnnotations(next < records.size());
        return next == records.size();
    });
}

void VeyraView::removeAnnotation(const id& identifier) {
    onMainQueue([this, identifier] { _internalRemoveAnnotation(identifier); });
}

void VeyraView::removeAnnotations(const id& identifiers) {
    if (!VeyraValidateWebScriptObject(identifiers, nullptr, callerName("removeAnnotations:"), {"length"}))
        return;
    NSArray collected;
    forEachElement(identifiers, [&](const id& identifier) {
        if (!isNothing(identifier)) // which finds nothing: a false length costs no memory
            collected.push_back(identifier);
    });
    onMainQueueInSlices([this, collected = std::move(collected), next = size_t{0}](int64_t end) mutable {
        for (bool isTime = true; isTime && next < collected.size(); isTime = g_get_monotonic_time() < end)
            _internalRemoveAnnotation(collected[next++]);
        return next == collected.size();
    });
}

void VeyraView::selectAnnotationAnimated(const id& identifier, bool animated) {
    onMainQueue([this, identifier, animated] {
        if (const auto record = registeredAnnotation(identifier, cannotSelect))
            _mapView->selectAnnotationAnimated(record, animated);
    });
}

void VeyraView::deselectAnnotationAnimated(const id& identifier, bool animated) {
    onMainQueue([this, identifier, animated] {
        if (const auto record = registeredAnnotation(identifier, cannotDeselect))
            _mapView->deselectAnnotationAnimated(record, animated);
    });
}

id VeyraView::annotations() const {
    const NSLockGuard guard(_lock);
    return id(_mapAnnotations.identifiers());
}

id VeyraView::selectedAnnotations() const {
    const NSLockGuard guard(_lock);
    return id(_selectedMapAnnotations);
}

std::shared_ptr<VeyraAnnotationSO> VeyraView::registeredAnnotation(const id& identifier, const char* complaint) const {
    std::shared_ptr<VeyraAnnotationSO> record;
    {
        const NSLockGuard guard(_lock);
        record = _mapAnnotations.find(identifier);
    }
    if (!record && !isNothing(identifier))
        logVerbose(complaint, identifier);
    return record;
}

void VeyraView::_internalAddAnnotation(const std::shared_ptr<VeyraAnnotationSO>& record) {
    const id& identifier = record->identifier();
    if (isNothing(identifier))
        return;
    bool isRegistered;
    {
        const NSLockGuard guard(_lock);
        isRegistered = _mapAnnotations.contains(identifier);
    }
    if (isRegistered)
        logVerbose("Error: duplicate annotation identfier '%@'", identifier);
    else if (record->imageURLString().isNil() || _mapAnnotationImages.contains(record->imageURLString()))
        putOnMap(record);
    else
        deferAnnotation(record);
}

void VeyraView::putOnMap(const std::shared_ptr<VeyraAnnotationSO>& record) {
    _mapView->addAnnotation(record);
    std::shared_ptr<VeyraAnnotationSO> former; // outlives the guard: what is replaced is released without it
    const NSLockGuard guard(_lock);
    former = _mapAnnotations.put(record);
}

void VeyraView::_internalRemoveAnnotation(const id& identifier) {
    const auto record = registeredAnnotation(identifier, cannotRemove);
    if (!record)
        return;
    {
        const NSLockGuard guard(_lock);
        _mapAnnotations.take(identifier);
    }
    _mapView->removeAnnotation(record);
}

} // namespace veyra
