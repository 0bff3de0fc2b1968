// Loads "file:" addresses of this machine: ordinary files only, so that nothing waits for a pipe or a device. The
// announced length is the file's size; of a file that grows meanwhile no more is delivered. Main queue; the file is
// read on other threads.
#pragma once

#include "Platform/Foundation/NSURLProtocol.h"

#include <gio/gio.h>

namespace veyra {

class NSFileURLProtocol final : public NSURLProtocol {
public:
    NSFileURLProtocol(std::shared_ptr<const NSURLRequest> request, std::weak_ptr<NSURLProtocolClient> client);
    ~NSFileURLProtocol() override;
    void startLoading() override;
    void stopLoading() override;

private:
    void query();
    void gotInformation(GFileInfo* information);
    void open();
    void gotStream(GInputStream* stream);
    void read();
    void gotBytes(GBytes* bytes);
    void failWith(const GError& error);

    GFile* _file = nullptr;
    GInputStream* _stream = nullptr;
    GCancellable* const _cancellable;
    int64_t _left = 0; // bytes of the announced length to come
};

} // namespace veyra
