// How exact the conversions are, through the script interface, at all scales: against PROJ, and there and back again.
#include "Tests/Classes/ViewFixture.h"

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <unistd.h>

namespace veyra {

namespace {

// Where the views look: in the middle, near both poles, and across the antimeridian.
constexpr CLLocationCoordinate2D centers[] = {{0, 0},       {48.2, 16.4}, {84.9, -20},
                                              {-84.9, 120}, {37, 180},    {-17, -179.99}};

class ConversionPrecision : public MapFixture {
protected:
    ConversionPrecision() { layOut(1024, 768); }
    /// Shows a place at a scale: points a map point are 2 to the power of `level` + 1, down to the whole world.
    void show(CLLocationCoordinate2D center, int level) {
        const double width = 1024 / std::exp2(level + 1);
        const MKMapPoint middle = MKMapPointForCoordinate(center);
        onMain([&] {
            mapView().setRegion(MKCoordinateRegionForMapRect(
                {{middle.x - width / 2, middle.y - width * 0.375}, {width, width * 0.75}}));
        });
        settle();
    }
};

struct Place {
    double latitude, longitude;
};

std::string exact(double number) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

/// Map points by PROJ, with all digits that a double has.
std::vector<MKMapPoint> projected(const std::vector<Place>& places) {
    const std::string input = "/tmp/veyra-precision-" + std::to_string(getpid());
    std::ofstream file(input);
    for (const Place& place : places)
        file << exact(place.longitude) << ' ' << exact(place.latitude) << '\n';
    file.close();
    std::vector<MKMapPoint> points;
    if (FILE* const pipe = popen(("proj -f %.18f +proj=webmerc +R=1 +over " + input).c_str(), "r")) {
        double x = 0, y = 0;
        while (fscanf(pipe, "%lf %lf", &x, &y) == 2)
            points.push_back({(x / (2 * M_PI) + 0.5) * MKWorldSide, (0.5 - y / (2 * M_PI)) * MKWorldSide});
        pclose(pipe);
    }
    unlink(input.c_str());
    return points;
}

} // namespace

TEST_F(ConversionPrecision, CoordinatesAgreeWithProjToABillionthOfTheView) {
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> unit(0, 1);
    for (const CLLocationCoordinate2D& center : centers) {
        for (int level = 0; level >= -18; level -= 3) {
            show(center, level);
            const MKMapRect visible = view().visibleMapRect();
            std::vector<Place> places;
            for (int i = 0; i < 20; ++i) {
                const CLLocationCoordinate2D place =
                    MKCoordinateForMapPoint({visible.origin.x + unit(random) * visible.size.width,
                                             visible.origin.y + unit(random) * visible.size.height});
                places.push_back({place.latitude, place.longitude});
            }
            const auto points = projected(places);
            ASSERT_EQ(points.size(), places.size()) << "Debian package proj-bin";
            std::string list;
            for (const Place& place : places)
                list += "[" + exact(place.latitude) + "," + exact(place.longitude) + "],";
            std::istringstream answers(
                run("[" + list +
                    "].map(([latitude, longitude]) => { const p = map.convertCoordinateToPoint({ "
                    "latitude, longitude }); return p.x + ' ' + p.y; }).join(' ')"));
            for (const MKMapPoint& point : points) {
                double x = 0, y = 0;
                ASSERT_TRUE(answers >> x >> y);
                EXPECT_NEAR(x / 1024, (point.x - visible.origin.x) / visible.size.width, 1e-9) << level;
                EXPECT_NEAR(y / 768, (point.y - visible.origin.y) / visible.size.height, 1e-9) << level;
            }
        }
    }
}

TEST_F(ConversionPrecision, PointsComeBackToAMillionthOfAPoint) {
    for (const CLLocationCoordinate2D& center : centers) {
        for (int level = 0; level >= -18; --level) {
            show(center, level);
            // Coordinates that single precision holds exactly.
            const std::string worst = run(R"(
                worst = 0;
                for (let i = 0; i <= 32; ++i)
                    for (let j = 0; j <= 32; ++j) {
                        const point = { x: i * 31.75, y: j * 23.8125 };
                        const back = map.convertCoordinateToPoint(map.convertPointToCoordinate(point));
                        worst = Math.max(worst, Math.abs(back.x - point.x), Math.abs(back.y - point.y));
                    }
                worst)");
            EXPECT_LT(std::stod(worst), 1e-6) << center.latitude << ' ' << level;
        }
    }
}

} // namespace veyra
