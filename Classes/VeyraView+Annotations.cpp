// The script side of annotations: what is refused is refused here, on the script's thread. The map shows no annotations
// yet, so that its registry is empty and every identifier unknown.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"

namespace veyra {

namespace {

bool validateAnnotation(const id& annotation, const id& caller) {
    if (!VeyraValidateWebScriptObject(
            annotation, nullptr, caller,
            {kOstrelAnnotationLatitude, kOstrelAnnotationLongitude, kOstrelAnnotationIdentifier}))
        return false;
    if (annotation.object()->valueForKey(kOstrelAnnotationIdentifier).isString())
        return true;
    WebScriptObject::throwException("Annotation identifiers must be of type string");
    return false;
}

} // namespace

void VeyraView::addAnnotation(const id& annotation) {
    validateAnnotation(annotation, callerName("addAnnotation:"));
}

void VeyraView::addAnnotations(const id& annotations) {
    const id caller = callerName("addAnnotations:");
    if (!VeyraValidateWebScriptObject(annotations, nullptr, caller, {"length"}))
        return;
    forEachElement(annotations, [&](const id& element) { validateAnnotation(element, caller); });
}

void VeyraView::removeAnnotation(const id& identifier) {
    dispatch_async(dispatch_get_main_queue(), [view = objectForWebScript(), identifier] {
        view->logVerbose("Map does not have annotation with Id '%@'; cannot remove", identifier);
    });
}

void VeyraView::removeAnnotations(const id& identifiers) {
    if (!VeyraValidateWebScriptObject(identifiers, nullptr, callerName("removeAnnotations:"), {"length"}))
        return;
    forEachElement(identifiers, [this](const id& identifier) { removeAnnotation(identifier); });
}

void VeyraView::selectAnnotationAnimated(const id& identifier, bool) {
    dispatch_async(dispatch_get_main_queue(), [view = objectForWebScript(), identifier] {
        view->logVerbose("Map does not have annotation with Id '%@'; cannot select", identifier);
    });
}

void VeyraView::deselectAnnotationAnimated(const id& identifier, bool) {
    dispatch_async(dispatch_get_main_queue(), [view = objectForWebScript(), identifier] {
        view->logVerbose("Map does not have annotation with Id '%@'; cannot deselect", identifier);
    });
}

id VeyraView::annotations() const {
    return id(NSArray());
}

id VeyraView::selectedAnnotations() const {
    return id(NSArray());
}

} // namespace veyra
