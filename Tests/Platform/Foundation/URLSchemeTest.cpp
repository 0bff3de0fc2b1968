// Loads from what is no HTTP server: data and file addresses, names that nobody knows, and what cannot be loaded.
#include "Tests/Platform/Foundation/URLConnectionFixture.h"

#include <gio/gio.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace veyra {

using Reports = std::vector<std::string>;

namespace {

// A resolver that knows no name, for one reason or another. The type of GIO's own resolver is not looked at.
struct NoResolver {
    GResolver parent;
};
struct NoResolverClass {
    GResolverClass parent;
};
int resolverError = 0;

void lookUp(GResolver* resolver, const char*, GResolverNameLookupFlags, GCancellable* cancellable,
            GAsyncReadyCallback callback, gpointer data) {
    GTask* const task = g_task_new(resolver, cancellable, callback, data);
    g_task_return_new_error(task, G_RESOLVER_ERROR, resolverError, "no such name");
    g_object_unref(task);
}

G_DEFINE_TYPE(NoResolver, no_resolver, G_TYPE_RESOLVER)

void no_resolver_init(NoResolver*) {}
void no_resolver_class_init(NoResolverClass* type) {
    type->parent.lookup_by_name_async = [](GResolver* resolver, const char* name, GCancellable* cancellable,
                                           GAsyncReadyCallback callback, gpointer data) {
        lookUp(resolver, name, G_RESOLVER_NAME_LOOKUP_FLAGS_DEFAULT, cancellable, callback, data);
    };
    type->parent.lookup_by_name_finish = [](GResolver*, GAsyncResult* result, GError** error) {
        return static_cast<GList*>(g_task_propagate_pointer(G_TASK(result), error));
    };
    type->parent.lookup_by_name_with_flags_async = lookUp;
    type->parent.lookup_by_name_with_flags_finish = type->parent.lookup_by_name_finish;
}

} // namespace

class URLScheme : public URLConnection {
protected:
    URLScheme() : folder(std::filesystem::temp_directory_path() / ("veyra-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(folder);
    }
    ~URLScheme() override { std::filesystem::remove_all(folder); }
    std::string file(const std::string& name) const { return "file://" + (folder / name).string(); }
    void write(const std::string& name, const std::string& text) const { std::ofstream(folder / name) << text; }

    const std::filesystem::path folder;
};

TEST_F(URLScheme, DataIsDecodedAndItsTrueLengthAnnounced) {
    const struct {
        const char* address;
        const char* data;
    } cases[] = {
        {"data:,a%20b%2Cc", "a b,c"},
        {"data:text/plain;charset=utf-8,text", "text"},
        {"DATA:,x", "x"},
        {"data:image/png;base64,aGVsbG8=", "hello"},
        {"data:;BASE64,aGVsbG8", "hello"},
        {"data:;base64,aGVs%20bG8%3D", "hello"},
        {"data:;base64,aGVsbG8h", "hello!"},
        {"data:,one,two", "one,two"},
        {"data:,before#after", "before"},
    };
    for (const auto& [address, data] : cases) {
        const Load done = load(address);
        EXPECT_EQ(done.data, data) << address;
        EXPECT_EQ(done.reports, (Reports{"response " + std::to_string(done.data.size()) + " 0", "data", "finished"}))
            << address;
    }
}

TEST_F(URLScheme, EmptyDataFinishesWithoutData) {
    EXPECT_EQ(load("data:,").reports, (Reports{"response 0 0", "finished"}));
    EXPECT_EQ(load("data:;base64,").reports, (Reports{"response 0 0", "finished"}));
}

TEST_F(URLScheme, DataThatIsNoneFailsAsABadAddress) {
    for (const char* address : {"data:", "data:text/plain", "data:;base64,a", "data:;base64,a*bc", "data:;base64,ab=c",
                                "data:;base64,=", "data:#,text"})
        EXPECT_EQ(failure(address), -1000) << address;
}

TEST_F(URLScheme, DataThatIsCancelledAtItsResponseSaysNothingMore) {
    EXPECT_EQ(load(
                  "data:,text", [](NSURLConnection& connection) { connection.cancel(); }, 0.1)
                  .reports,
              (Reports{"response 4 0"}));
}

TEST_F(URLScheme, AFileIsReadAndItsSizeAnnounced) {
    write("a b.txt", std::string(200000, 'x'));
    const Load done = load(file("a%20b.txt"));
    EXPECT_EQ(done.reports, (Reports{"response 200000 0", "data", "finished"}));
    EXPECT_EQ(done.data, std::string(200000, 'x'));
    write("empty", "");
    EXPECT_EQ(load(file("empty")).reports, (Reports{"response 0 0", "finished"}));
}

TEST_F(URLScheme, AFileMayBeNamedWithThisHost) {
    write("text", "text");
    EXPECT_EQ(load("file://localhost" + (folder / "text").string()).data, "text");
    EXPECT_EQ(failure("file://elsewhere" + (folder / "text").string()), -1000);
}

TEST_F(URLScheme, WhatIsNoOrdinaryFileFails) {
    EXPECT_EQ(failure(file("absent")), -1100);
    EXPECT_EQ(failure("file://" + folder.string()), -1101);
    EXPECT_EQ(failure("file:///dev/zero"), -1102);
    mkfifo((folder / "pipe").c_str(), 0600);
    EXPECT_EQ(failure(file("pipe")), -1102) << "a pipe that nobody writes to would be waited for without end";
    EXPECT_EQ(failure("file:relative"), -1000);
}

TEST_F(URLScheme, AFileThatIsCancelledAtItsResponseSaysNothingMore) {
    write("text", "text");
    EXPECT_EQ(load(
                  file("text"), [](NSURLConnection& connection) { connection.cancel(); }, 0.2)
                  .reports,
              (Reports{"response 4 0"}));
}

TEST_F(URLScheme, OtherKindsOfAddressesAreNotSupported) {
    for (const char* address : {"ftp://127.0.0.1/pin.png", "about:blank", "blob:null/1", "javascript:alert(1)",
                                "ws://127.0.0.1/", "pin.png", "/pin.png", "//127.0.0.1/pin.png", ""})
        EXPECT_EQ(failure(address), -1002) << address;
}

TEST_F(URLScheme, AnHTTPAddressWithoutAHostIsBad) {
    EXPECT_EQ(failure("http:///pin.png"), -1000);
    EXPECT_EQ(failure("http:pin.png"), -1000);
    EXPECT_EQ(failure("https:"), -1000);
}

TEST_F(URLScheme, ANameThatNobodyKnowsAndANetworkThatIsNotThereAreToldApart) {
    GResolver* const former = g_resolver_get_default();
    GResolver* const none = G_RESOLVER(g_object_new(no_resolver_get_type(), nullptr));
    g_resolver_set_default(none);
    resolverError = G_RESOLVER_ERROR_NOT_FOUND;
    EXPECT_EQ(failure("http://pins.example/"), -1003);
    resolverError = G_RESOLVER_ERROR_TEMPORARY_FAILURE;
    EXPECT_EQ(failure("http://pins.example/"), -1009);
    g_resolver_set_default(former);
    g_object_unref(none);
    g_object_unref(former);
}

TEST_F(URLScheme, SystemErrorsHaveTheirNumbers) {
    const struct {
        int ioError;
        bool connected;
        int code;
    } cases[] = {
        {G_IO_ERROR_TIMED_OUT, false, -1001},
        {G_IO_ERROR_HOST_NOT_FOUND, false, -1003},
        {G_IO_ERROR_CONNECTION_REFUSED, false, -1004},
        {G_IO_ERROR_CONNECTION_CLOSED, true, -1005},
        {G_IO_ERROR_BROKEN_PIPE, true, -1005},
        {G_IO_ERROR_PARTIAL_INPUT, true, -1005},
        {G_IO_ERROR_FAILED, true, -1005},
        {G_IO_ERROR_FAILED, false, -1},
        {G_IO_ERROR_NETWORK_UNREACHABLE, false, -1009},
        {G_IO_ERROR_HOST_UNREACHABLE, false, -1009},
    };
    for (const auto& [ioError, connected, code] : cases) {
        GError* const error = g_error_new_literal(G_IO_ERROR, ioError, "");
        EXPECT_EQ(urlErrorCode(*error, connected), code) << ioError << " " << connected;
        g_error_free(error);
    }
    GError* const certificate = g_error_new_literal(G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE, "");
    EXPECT_EQ(urlErrorCode(*certificate, false), -1202);
    g_error_free(certificate);
}

} // namespace veyra
