#include "Platform/MapKit/ImageTiles/MKArchiveImageSet.h"

#include "Platform/Foundation/WorkQueue.h"

#include <algorithm>

namespace veyra {

/// Reads and decodes one image on a worker.
class MKArchiveImageSet::Request final : public MKImageRequest, public std::enable_shared_from_this<Request> {
public:
    Request(std::shared_ptr<Learned> learned, const MKImageKey& key, Handlers handlers)
        : _learned(std::move(learned)), _key(key), _handlers(std::move(handlers)) {}

    void begin() override {
        dispatch_async(dispatch_get_global_queue(), [weak = weak_from_this(), learned = _learned, key = _key] {
            dispatch_async(dispatch_get_main_queue(), [weak, result = read(*learned, key)] {
                if (const auto self = weak.lock()) {
                    self->_handlers.ended(result);
                }
            });
        });
    }

private:
    static MKImageResult read(Learned& learned, const MKImageKey& key) {
        MKImageResult result;
        try {
            const MKTileArchive::Contents contents = learned.archive.contents();
            learned.minimumZoom = contents.minimumZoom;
            learned.maximumZoom = contents.maximumZoom;
            {
                const NSLockGuard guard(learned.lock);
                learned.attribution = contents.attribution;
            }
            if (const auto bytes = learned.archive.read(key.zoom, key.column, key.row)) {
                result.image = decodeTileImage(*bytes);
            }
        } catch (const MKTileArchiveError& error) {
            result.failure = error.what();
        } catch (const MKTileImageError& error) {
            result.failure = learned.archive.path() + ": tile " + std::to_string(key.zoom) + "/" +
                             std::to_string(key.column) + "/" + std::to_string(key.row) + ": " + error.what();
        }
        return result;
    }

    const std::shared_ptr<Learned> _learned;
    const MKImageKey _key;
    const Handlers _handlers;
};

MKArchiveImageSet::MKArchiveImageSet(const std::string& path, MKImageSetProperties properties)
    : MKImageSet(std::move(properties)), _learned(std::make_shared<Learned>(path)) {}

int MKArchiveImageSet::minimumZoom() const {
    return std::max(MKImageSet::minimumZoom(), _learned->minimumZoom.load());
}

int MKArchiveImageSet::maximumZoom() const {
    return std::min(MKImageSet::maximumZoom(), _learned->maximumZoom.load());
}

MKTileAttribution MKArchiveImageSet::attribution() const {
    const MKTileAttribution given = MKImageSet::attribution();
    if (!given.text.empty()) {
        return given;
    }
    const NSLockGuard guard(_learned->lock);
    return _learned->attribution;
}

std::shared_ptr<MKImageRequest> MKArchiveImageSet::request(const MKImageKey& key,
                                                           MKImageRequest::Handlers handlers) const {
    return std::make_shared<Request>(_learned, key, std::move(handlers));
}

} // namespace veyra
