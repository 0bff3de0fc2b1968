#include "Platform/MapKit/MKDrawingTicket.h"

#include <gtest/gtest.h>

namespace veyra {

namespace {

class Figure final : public MKOverlayFigure {
public:
    explicit Figure(size_t vertexCount) : MKOverlayFigure({}, {{0, 0}, {1, 1}}), _vertexCount(vertexCount) {}
    size_t vertexCount() const override { return _vertexCount; }
    void trace(const MKOutlinePlace&, MKOutline&) const override {}

private:
    const size_t _vertexCount;
};

const auto shortOne = std::make_shared<const Figure>(MKOverlayFigure::muchToDraw - 1);
const auto longOne = std::make_shared<const Figure>(MKOverlayFigure::muchToDraw);

std::shared_ptr<const MKOverlayFigures> only(MKOverlayFigures figures) {
    return std::make_shared<const MKOverlayFigures>(std::move(figures));
}

} // namespace

TEST(MKDrawingTicket, KeepsAllUntilItIsToldWhichOnes) {
    MKDrawingTicket ticket;
    ticket.begin(0, *longOne);
    ticket.check();
    EXPECT_FALSE(ticket.isAbandoned());
}

TEST(MKDrawingTicket, IsAbandonedWhenAnyPartIsAtAFigureThatIsNotKept) {
    for (size_t part = 0; part < MKDrawingTicket::parts; ++part) {
        for (const auto& figure : {shortOne, longOne}) {
            MKDrawingTicket ticket;
            ticket.begin(part, *figure);
            ticket.begin((part + 1) % MKDrawingTicket::parts, *(figure == shortOne ? longOne : shortOne));
            ticket.keep(only({shortOne, longOne}));
            EXPECT_FALSE(ticket.isAbandoned());
            ticket.keep(only({figure == shortOne ? longOne : shortOne}));
            EXPECT_TRUE(ticket.isAbandoned()) << part;
            EXPECT_THROW(ticket.check(), MKDrawingTicket::Abandoned);
        }
    }
}

TEST(MKDrawingTicket, APartThatHasEndedIsAtNoFigure) {
    MKDrawingTicket ticket;
    ticket.begin(1, *longOne);
    ticket.end(1);
    ticket.keep(only({}));
    EXPECT_FALSE(ticket.isAbandoned());
}

TEST(MKDrawingTicket, IsAbandonedWhenItComesToALongFigureThatIsNotKept) {
    MKDrawingTicket ticket;
    ticket.keep(only({shortOne}));
    ticket.begin(0, *shortOne);
    EXPECT_FALSE(ticket.isAbandoned());
    EXPECT_THROW(ticket.begin(2, *longOne), MKDrawingTicket::Abandoned);
    EXPECT_TRUE(ticket.isAbandoned()); // for the other parts too
}

TEST(MKDrawingTicket, AShortFigureThatIsNotKeptIsDrawnInVain) {
    MKDrawingTicket ticket;
    ticket.keep(only({longOne}));
    ticket.begin(0, *shortOne);
    ticket.begin(0, *longOne);
    EXPECT_FALSE(ticket.isAbandoned());
}

} // namespace veyra
