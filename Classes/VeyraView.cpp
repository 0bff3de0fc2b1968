// The view's life: creation, start, stop, layout, end.
#include "Classes/VeyraView.h"

#include "Classes/VeyraScriptClass.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/MapKit/MKLocationManager.h"
#include "Platform/UIKit/CALayer.h"
#include "Platform/WebKit/WebPlugInContainer.h"

namespace veyra {

namespace {

std::atomic<size_t> viewCount{0};

id absentPropertyIsNil(NSObject&, std::span<const id>) {
    return id();
}

} // namespace

VeyraView::VeyraView() {
    ++viewCount;
}

size_t VeyraView::liveViews() {
    return viewCount;
}

std::shared_ptr<VeyraView> VeyraView::plugInViewWithArguments(std::shared_ptr<const NSDictionary> arguments) {
    auto view = UIView::make<VeyraView>({{0, 0}, {1, 1}});
    {
        const NSLockGuard guard(view->_lock);
        view->_pluginArguments = arguments;
    }
    NSNotificationCenter::defaultCenter().postNotification(VeyraCreatedNotification, view, std::move(arguments));
    return view;
}

void VeyraView::initWithFrame(const CGRect& frame) {
    UIView::initWithFrame(frame);
    // From now on an absent property of a script object reads as nil; validation depends on it.
    class_replaceMethod(NSClassFromString("WebScriptObject"), "valueForUndefinedKey:", absentPropertyIsNil, "@@:@");
    MKLocationManager::sharedLocationManager().setContinuesWhileInactive(true);

    _mapView = UIView::make<MKMapView>(bounds());
    _mapView->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    addSubview(_mapView);
    _mapView->setDelegate(std::static_pointer_cast<VeyraView>(shared_from_this()));
    {
        const NSLockGuard guard(_lock);
        _boundsSize = bounds().size;
        _droppedPinIdentifier = id("dropped-pin-id");
    }
    _infoLightButton = UIButton::buttonWithType(UIButtonTypeInfoLight);
    _detailDisclosureButton = UIButton::buttonWithType(UIButtonTypeDetailDisclosure);
}

VeyraView::~VeyraView() {
    if (_mapView) {
        _mapView->setDelegate(nullptr);
        _mapView->removeFromSuperview();
    }
    --viewCount;
}

void VeyraView::webPlugInInitialize() {
    const auto arguments = pluginArguments();
    const auto container =
        arguments ? arguments->objectForKey(WebPlugInContainerKey).as<WebPlugInContainer>() : nullptr;
    const auto frame = container ? container->webFrame() : nullptr;
    if (!frame || !frame->globalContext())
        return;
    installGeoMap(frame->globalContext(), "-[VeyraView webPlugInInitialize]");
}

void VeyraView::webPlugInDestroy() {
    NSNotificationCenter::defaultCenter().postNotification(VeyraDestroyedNotification, shared_from_this());
    std::shared_ptr<const NSDictionary> arguments; // outlives the guard: released without the lock
    const NSLockGuard guard(_lock);
    arguments.swap(_pluginArguments);
}

std::shared_ptr<VeyraView> VeyraView::objectForWebScript() {
    return std::static_pointer_cast<VeyraView>(shared_from_this());
}

std::shared_ptr<UIView> VeyraView::superview() const {
    for (auto above = layer()->superlayer(); above; above = above->superlayer())
        if (auto view = std::dynamic_pointer_cast<UIView>(above->delegate()))
            return view;
    return nullptr;
}

void VeyraView::layoutSubviews() {
    UIView::layoutSubviews();
    const NSLockGuard guard(_lock);
    _boundsSize = bounds().size;
}

std::shared_ptr<const NSDictionary> VeyraView::pluginArguments() const {
    const NSLockGuard guard(_lock);
    return _pluginArguments;
}

std::shared_ptr<NSObject> VeyraView::delegate() const {
    const NSLockGuard guard(_lock);
    return _delegate.lock();
}

void VeyraView::setDelegate(const std::shared_ptr<NSObject>& delegate) {
    const NSLockGuard guard(_lock);
    _delegate = delegate;
}

id VeyraView::jsListener() const {
    const NSLockGuard guard(_lock);
    return _jsListener;
}

void VeyraView::setJsListener(const id& listener) {
    id former = listener; // outlives the guard: the old listener is released without the lock
    const NSLockGuard guard(_lock);
    std::swap(_jsListener, former);
}

void VeyraView::log(const id& message) {
    NSLog("log: %@", {message});
}

void VeyraView::logVerbose(const char* format, const id& argument) const {
    if (_verboseDebugLoggingEnabled)
        NSLog(format, {argument});
}

void VeyraView::sendEvent(const NSString& name, NSArray arguments) {
    _veyra_webThreadCallWebScriptMethod(jsListener(), name, std::move(arguments));
}

} // namespace veyra
