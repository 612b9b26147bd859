#include "presentation/GradientView.h"
#include "presentation/ShadowView.h"

#include <gtest/gtest.h>

// Catches: corners given to the side borders, a thin border not one device pixel, borders lost
// without colours, and dimming that ignores the flag or the given dimmed colours.
TEST(GradientView, BordersAndDimming)
{
    GradientView view;
    view.setTopBorderColor(Qt::red);
    view.setRightBorderColor(Qt::blue);
    const auto rects = view.borderRects(QSizeF(100, 40), 2.0);
    ASSERT_EQ(rects.size(), 2);
    EXPECT_EQ(rects.at(0).second, QRectF(0, 0, 100, 0.5));
    EXPECT_EQ(rects.at(1).second, QRectF(99.5, 0.5, 0.5, 39.5)) << "the right border starts under the top one";
    view.setDrawsThinBorders(false);
    EXPECT_EQ(view.borderRects(QSizeF(100, 40), 2.0).at(0).second.height(), 1.0);
    EXPECT_TRUE(view.gradientColors().isEmpty()) << "no colours, no gradient; borders all the same";

    view.setColors({QColor(Qt::red), QColor(Qt::yellow)});
    view.setDimmed(true);
    EXPECT_EQ(view.gradientColors().at(0).hsvSaturationF(), 0) << "dimmed automatically: grey";
    view.setDimmedColors({QColor(Qt::green)});
    EXPECT_EQ(view.gradientColors(), QList<QColor>{QColor(Qt::green)});

    GradientView manual;
    manual.setColors({QColor(Qt::red)});
    manual.setAutomaticallyDims(false);
    manual.setDimmed(true);
    EXPECT_EQ(manual.gradientColors(), QList<QColor>{QColor(Qt::red)});
    manual.setAutomaticallyDims(true);
    EXPECT_EQ(manual.gradientColors(), QList<QColor>{QColor(Qt::red)}) << "the flag alone doesn't rebuild";
}

// Catches: a highlight that replaces the shadow's colour.
TEST(ShadowView, KeepsTheFirstBackground)
{
    ShadowView shadow;
    shadow.setBackgroundColor(QColor(QStringLiteral("#e0dcd4")));
    shadow.setBackgroundColor(Qt::transparent);
    EXPECT_EQ(shadow.backgroundColor(), QColor(QStringLiteral("#e0dcd4")));
    ShadowView cleared;
    cleared.setBackgroundColor(Qt::transparent);
    cleared.setBackgroundColor(Qt::red);
    EXPECT_EQ(cleared.backgroundColor(), QColor(Qt::transparent));
}
