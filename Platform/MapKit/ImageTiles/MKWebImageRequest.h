// One image from a server: from disk when what is there is fresh, else from the server, which is asked whether what is
// on disk has changed. When it cannot be asked, what is on disk is used if it may be. Main queue only; reading,
// decoding and storing happen on the work queue.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSURLConnection.h"
#include "Platform/MapKit/ImageTiles/MKImageDisk.h"
#include "Platform/MapKit/ImageTiles/MKImageFreshness.h"
#include "Platform/MapKit/ImageTiles/MKImageSet.h"

namespace veyra {

class MKWebImageRequest final : public MKImageRequest,
                                private NSURLConnectionDelegate,
                                public std::enable_shared_from_this<MKWebImageRequest> {
public:
    static constexpr size_t maximumBytes = size_t{8} << 20; ///< of an answer
    static constexpr double idleTimeout = 15;               ///< seconds without a byte
    static constexpr double timeout = 40;                   ///< seconds for all of an answer

    MKWebImageRequest(std::string url, MKImageDisk& disk, Handlers handlers);
    ~MKWebImageRequest() override;
    void begin() override;
    void load() override;

private:
    using Stored = std::shared_ptr<const MKStoredImage>;
    void foundOnDisk(Stored stored, std::shared_ptr<const MKTileImage> image);
    void connectionDidReceiveResponse(NSURLConnection& connection, const NSURLResponse& response) override;
    void connectionDidReceiveData(NSURLConnection& connection, std::string_view bytes) override;
    void connectionDidFinishLoading(NSURLConnection& connection) override;
    void connectionDidFailWithError(NSURLConnection& connection, const std::shared_ptr<NSError>& error) override;
    void gotStatus(int status);
    /// Decodes an answer on a worker, and stores it as the server allows; then the request ends.
    void take(MKStoredImage answer, const MKImageFreshness& freshness);
    /// Ends with what is on disk, if that may be used, else with the failure.
    void fallBack(const std::string& reason, bool mayPass);
    void fail(const std::string& reason, bool mayPass);
    void end(MKImageResult result);

    const std::string _url;
    MKImageDisk& _disk;
    const Handlers _handlers;
    Stored _stored; // what is on disk, if anything
    std::shared_ptr<NSURLConnection> _connection;
    DispatchTimer _timer;
    NSURLResponse _response;
    std::string _bytes;
};

} // namespace veyra
