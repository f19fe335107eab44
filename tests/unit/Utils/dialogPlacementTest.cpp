// Where a secondary window goes beside its parent, from numbers alone.

#include "src/Utils/dialogPlacement.h"

#include <gtest/gtest.h>

namespace
{

constexpr Size fullHd = {1920, 1080};
using Fit = Place::Fit;

struct Case {
    const char *situation;
    Rect parent;
    Size dialog;
    Size screen;
    Place place;
};

void expectPlace(const Case &each)
{
    const Place place = placeDialog(each.parent, each.dialog, each.screen);
    EXPECT_EQ(place.x, each.place.x) << each.situation;
    EXPECT_EQ(place.y, each.place.y) << each.situation;
    EXPECT_EQ(place.fit, each.place.fit) << each.situation;
}

} // namespace

TEST(DialogPlacement, GoesAboveElseBelowElseToTheMiddle)
{
    const Case cases[] = {
        {"room above", {100, 300, 350, 100}, {300, 200}, fullHd, {Fit::above, 125, 90}},
        {"just room above", {100, 210, 350, 100}, {300, 200}, fullHd, {Fit::above, 125, 0}},
        {"one pixel short above", {100, 209, 350, 100}, {300, 200}, fullHd, {Fit::below, 125, 319}},
        {"room below only", {100, 50, 350, 100}, {300, 200}, fullHd, {Fit::below, 125, 160}},
        {"just room below", {100, 50, 350, 820}, {300, 200}, fullHd, {Fit::below, 125, 880}},
        {"one pixel short below", {100, 50, 350, 821}, {300, 200}, fullHd, {Fit::centred, 125, 440}},
        {"no room above or below", {100, 50, 350, 900}, {300, 200}, fullHd, {Fit::centred, 125, 440}},
        {"an odd rest is rounded down", {100, 50, 350, 900}, {300, 201}, fullHd, {Fit::centred, 125, 439}},
        {"as high as the screen", {100, 50, 350, 900}, {300, 1080}, fullHd, {Fit::centred, 125, 0}},
    };
    for (const Case &each : cases)
        expectPlace(each);
}

TEST(DialogPlacement, WithoutAnyRoomIsTheCorner)
{
    expectPlace({"higher than the screen", {100, 50, 350, 900}, {300, 1081}, fullHd, {Fit::none, 0, 0}});
}

TEST(DialogPlacement, HigherThanTheScreenStillFitsAboveAFarParent)
{
    expectPlace({"parent far below", {100, 2000, 350, 100}, {300, 1500}, fullHd, {Fit::above, 125, 490}});
}

TEST(DialogPlacement, IsCentredOnItsParentWithinTheScreen)
{
    const Case cases[] = {
        {"pushed back from the right", {1700, 300, 350, 100}, {400, 200}, fullHd, {Fit::above, 1520, 90}},
        {"just fits at the right", {1545, 300, 350, 100}, {400, 200}, fullHd, {Fit::above, 1520, 90}},
        {"pushed back from the left", {10, 300, 350, 100}, {400, 200}, fullHd, {Fit::above, 0, 90}},
        {"parent left of the screen", {-300, 300, 350, 100}, {400, 200}, fullHd, {Fit::above, 0, 90}},
        {"half a pixel counts towards the middle", {100, 300, 350, 100}, {401, 200}, fullHd, {Fit::above, 75, 90}},
        {"half a pixel, narrow dialog", {100, 300, 350, 100}, {301, 200}, fullHd, {Fit::above, 124, 90}},
        {"wider than the screen", {100, 300, 350, 100}, {2000, 200}, fullHd, {Fit::above, -80, 90}},
    };
    for (const Case &each : cases)
        expectPlace(each);
}
