// The process's one HTTP session, on the main queue: pooled connections, redirects followed, no cookies, no cache, no
// content decoding. Only Platform/Foundation looks inside. Main queue only.
#pragma once

typedef struct _GMainContext GMainContext;
typedef struct _SoupMessage SoupMessage;
typedef struct _SoupSession SoupSession;

namespace veyra {

/// The session; made at the first call and not owned by the caller.
SoupSession* mainQueueHTTPSession();

/// While one of these lives, what GIO and the session start on this thread reports on the main queue's context. Made
/// and destroyed on the main queue, around each such start.
class MainQueueContextScope {
public:
    MainQueueContextScope();
    ~MainQueueContextScope();
    MainQueueContextScope(const MainQueueContextScope&) = delete;
    MainQueueContextScope& operator=(const MainQueueContextScope&) = delete;

private:
    GMainContext* const _context;
};

} // namespace veyra
