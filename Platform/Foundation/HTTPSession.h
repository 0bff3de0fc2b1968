// The process's one HTTP session, on the main queue: pooled connections, redirects followed, no cookies, no cache, no
// content decoding. Only Platform/Foundation looks inside. Main queue only.
#pragma once

typedef struct _SoupSession SoupSession;

namespace veyra {

/// The session; made at the first call and not owned by the caller.
SoupSession* mainQueueHTTPSession();

} // namespace veyra
