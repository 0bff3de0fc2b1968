// A map whose annotations have images from a real server on a loopback address, which answers when the test says so.
#pragma once

#include "Classes/VeyraAnnotationSO.h"
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Support/HTTPServer.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

namespace veyra {

inline std::string pngOfSize(int width, int height) {
    GdkPixbuf* const pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, width, height);
    gdk_pixbuf_fill(pixbuf, 0x3366ccff);
    gchar* bytes = nullptr;
    gsize size = 0;
    EXPECT_TRUE(gdk_pixbuf_save_to_buffer(pixbuf, &bytes, &size, "png", nullptr, nullptr));
    const std::string file(bytes, size);
    g_free(bytes);
    g_object_unref(pixbuf);
    return file;
}

/// The same image in a file of exactly that many bytes: what follows the end of a PNG is not looked at.
inline std::string pngOfLength(size_t length) {
    std::string file = pngOfSize(8, 8);
    file.resize(length, '\0');
    return file;
}

class AnnotationImageFixture : public ShownMapFixture {
protected:
    AnnotationImageFixture() {
        record();
        run("const image = (identifier, imageURL, more) => ({ latitude: 1, longitude: 2, identifier, imageURL, ...more "
            "})");
        server.serve("/pin.png", pngOfSize(16, 8));
        server.hold(true);
    }

    void add(const std::string& identifier, const std::string& url, const std::string& more = "") {
        run("map.addAnnotation(image('" + identifier + "', '" + url + "', { " + more + " }))");
        runMain();
    }
    /// Identifiers in the order in which the map got their annotations.
    std::vector<std::string> onMap() {
        std::vector<std::string> found;
        for (const auto& entry : instance().view()->mapView()->annotations())
            if (const auto made = std::dynamic_pointer_cast<VeyraAnnotationSO>(entry))
                found.push_back(made->identifier().description().utf8());
        return found;
    }
    std::shared_ptr<VeyraAnnotationSO> recordOf(const std::string& identifier) {
        for (const auto& entry : mapView().annotations())
            if (const auto made = std::dynamic_pointer_cast<VeyraAnnotationSO>(entry))
                if (made->identifier() == id(identifier.c_str()))
                    return made;
        return nullptr;
    }
    /// Lets the server answer, waits until nothing is being loaded any more, and delivers the events.
    void load() {
        server.hold(false);
        EXPECT_TRUE(runMainUntil([&] { return view().isIdle(); }));
        server.hold(true);
        settle();
    }
    std::string annotations() { return run("map.annotations.sort().join()"); }
    std::string failures() {
        return run("events.splice(0).filter(event => event.startsWith('mapFailed')).join('\\n')");
    }
    /// The image of the annotation's view.
    std::shared_ptr<UIImage> imageOf(const std::string& identifier) {
        const auto shown = mapView().viewForAnnotation(recordOf(identifier));
        return shown ? shown->image() : nullptr;
    }

    test::HTTPServer server;
};

} // namespace veyra
