// The images of annotations. An annotation with an image comes onto the map when the image is there, or as a pin when
// it cannot be had. Each address is loaded once and its image kept for good. Main queue.
//
// Three ends leave an address, and those that wait for it, waiting for ever: one that gives no connection, one that
// announces too much, and data that is no image. Pages rely on it.
#include "Classes/VeyraAnnotationSO.h"
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraView.h"

namespace veyra {

namespace {

constexpr uint64_t maximumImageLength = 102400; // bytes

/// Event arguments up to the first that is missing.
NSArray argumentsUpToNil(NSArray arguments) {
    const auto missing =
        std::find_if(arguments.begin(), arguments.end(), [](const id& argument) { return argument.isNil(); });
    arguments.erase(missing, arguments.end());
    return arguments;
}

} // namespace

std::shared_ptr<NSURL> VeyraView::URLForImage(const id& string) {
    static const SEL selector("scriptObject:requestsURLForString:allowOtherDomains:error:");
    const auto host = delegate();
    if (!host || !host->isa()->implementation(selector))
        return NSURL::URLWithString(string);
    const id arguments[] = {id(objectForWebScript()), string, id(true), id()};
    const id made = host->performSelector(selector, arguments);
    const auto url = made.as<NSURL>();
    return url ? url : NSURL::URLWithString(made);
}

void VeyraView::deferAnnotation(const std::shared_ptr<VeyraAnnotationSO>& record) {
    const id string = record->imageURLString();
    _deferredAnnotations[string].push_back(record);
    if (!_downloadsInProgress.try_emplace(string).second)
        return;
    const auto url = URLForImage(string);
    auto connection = NSURLConnection::initWithRequestDelegate(NSURLRequest::requestWithURL(url), objectForWebScript());
    if (!connection) {
        sendImageFailure(*record, kVeyraAnnotationURIInvalid, id(url ? url->absoluteString() : NSString("nil URL")));
        return;
    }
    _URLsByConnection[connection.get()] = string;
    _imageDownloadConnections.push_back(std::move(connection));
    countImageLoads(+1);
}

void VeyraView::sendImageFailure(const VeyraAnnotationSO& record, int code, const id& url) {
    sendEvent(kVeyraFailedRetrievingImageForAnnotation, argumentsUpToNil({record.identifier(), id(code), url}));
}

void VeyraView::connectionDidReceiveResponse(NSURLConnection& connection, const NSURLResponse& response) {
    // An unknown length is the largest number there is.
    if (static_cast<uint64_t>(response.expectedContentLength) <= maximumImageLength)
        return;
    connection.cancel();
    countImageLoads(-1);
}

void VeyraView::connectionDidReceiveData(NSURLConnection& connection, std::string_view bytes) {
    _downloadsInProgress[_URLsByConnection[&connection]] += bytes;
}

void VeyraView::connectionDidFinishLoading(NSURLConnection& connection) {
    const id string = _URLsByConnection[&connection];
    const auto finished = std::static_pointer_cast<NSURLConnection>(connection.shared_from_this());
    // The buffer stays, empty: the address is in progress until its image is there.
    UIImage::decodeData(std::exchange(_downloadsInProgress[string], {}),
                        [weak = std::weak_ptr(objectForWebScript()), string,
                         finished = std::weak_ptr(finished)](const std::shared_ptr<UIImage>& image) {
                            if (const auto view = weak.lock())
                                view->imageDecoded(string, image, finished.lock());
                        });
}

void VeyraView::imageDecoded(const id& string, const std::shared_ptr<UIImage>& image,
                             const std::shared_ptr<NSURLConnection>& connection) {
    countImageLoads(-1);
    if (image) {
        const double scale = _screenScale;
        _mapAnnotationImages[string] = scale == 1.0 ? image : image->imageWithScale(scale);
        for (const auto& record : takeDeferredAnnotations(string))
            putOnMap(record);
        _downloadsInProgress.erase(string);
    }
    std::erase(_imageDownloadConnections, connection);
}

void VeyraView::connectionDidFailWithError(NSURLConnection& connection, const std::shared_ptr<NSError>& error) {
    countImageLoads(-1);
    const id string = _URLsByConnection[&connection];
    const auto& url = connection.currentRequest().URL();
    for (const auto& record : takeDeferredAnnotations(string)) {
        record->setImageURLString(id());
        sendImageFailure(*record, error->code(), url ? id(url->absoluteString()) : id());
        putOnMap(record);
    }
    _downloadsInProgress.erase(string);
    std::erase(_imageDownloadConnections, std::static_pointer_cast<NSURLConnection>(connection.shared_from_this()));
}

std::vector<std::shared_ptr<VeyraAnnotationSO>> VeyraView::takeDeferredAnnotations(const id& string) {
    auto node = _deferredAnnotations.extract(string);
    return node ? std::move(node.mapped()) : std::vector<std::shared_ptr<VeyraAnnotationSO>>();
}

void VeyraView::countImageLoads(int change) {
    _imageLoads += change;
    idleStateChanged();
}

} // namespace veyra
