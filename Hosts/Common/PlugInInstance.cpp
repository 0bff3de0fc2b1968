#include "Hosts/Common/PlugInInstance.h"

#include "Hosts/Common/HostConfiguration.h"
#include "Platform/Foundation/DispatchQueue.h"

namespace veyra {

namespace {

std::shared_ptr<const NSDictionary> plugInArguments(const PlugInElement& element) {
    NSDictionary::Map attributes;
    for (const auto& [name, value] : element.attributes)
        attributes.emplace(NSString(std::string_view(name)), id(NSString(std::string_view(value))));
    return std::make_shared<NSDictionary>(NSDictionary::Map{
        {WebPlugInAttributesKey, id(std::make_shared<NSDictionary>(std::move(attributes)))},
        {WebPlugInBaseURLKey, id(NSString(std::string_view(element.baseURL)))},
        {WebPlugInContainerKey, id(std::make_shared<WebPlugInContainer>(element.frame))},
        {VeyraScreenScaleKey, id(element.screenScale)},
    });
}

} // namespace

std::shared_ptr<PlugInInstance> PlugInInstance::create(const PlugInElement& element) {
    std::shared_ptr<PlugInInstance> instance(new PlugInInstance);
    const auto arguments = plugInArguments(element);
    dispatch_get_main_queue().sync([&] {
        instance->_window = UIWindow::make();
        // As large as a new view: from then on the view grows with its window.
        instance->_window->setSize({1, 1}, element.screenScale);
        instance->_view = VeyraView::plugInViewWithArguments(arguments);
        instance->_view->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
        instance->_window->addSubview(instance->_view);
        instance->_view->mapView()->setLocationProvider(element.locationProvider);
    });
    if (!instance->_view)
        return nullptr; // the queue has logged why
    instance->_view->webPlugInInitialize();
    return instance;
}

PlugInInstance::~PlugInInstance() {
    stop();
}

void PlugInInstance::stop() {
    if (!_view)
        return;
    dispatch_async(dispatch_get_main_queue(), [view = std::move(_view), window = _window] {
        window->setFrameRequestHandler(nullptr);
        window->setIdleHandler(nullptr);
        window->setCaptionHandler(nullptr);
        view->webPlugInDestroy();
        view->removeFromSuperview();
    });
    _view = nullptr;
}

} // namespace veyra
