#include "OpenGL/WidgetRig.h"
#include "support/OutputCapture.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPool.h"

#include <QWindow>
#include <vector>

namespace {

const char* const kNotVisible =
    "assertion failed widgetHasBeenVisible at OS/Mac/QtGLWidgetPool line 122\n";

class QtGLWidgetPoolTest : public GLWidgetTest
{
protected:
    QtGLWidgetPoolTest() { other.setGeometry(700, 150, 300, 300); }
    ~QtGLWidgetPoolTest() override { pool.shutdown(); }

    Tq::Ptr<QtGLWidget> make(QWidget* parent, const QRect& place)
    {
        Tq::Ptr<QtGLWidget> widget(
            new QtGLWidget(parent, OpenGLUtils::getSharedContext().getWidget()));
        widget->setGeometry(place);
        widget->show();
        return widget;
    }
    static bool exposed(const QtGLWidget& widget) { return widget.windowHandle()->isExposed(); }

    QtGLWidgetPool& pool = QtGLWidgetPool::instance();
    QWidget other;
};

// A pooled widget: whose child it is (0 the window, 1 the other one), and where.
struct Kept
{
    int parent;
    QRect place;
};

struct PoolCase
{
    const char* name;
    std::vector<Kept> kept;
    int expected; ///< which of them get() takes for the window at (10, 20), 80 x 60
    bool moved;   ///< whether it was given a new place
};

void PrintTo(const PoolCase& one, std::ostream* out)
{
    *out << one.name;
}

const QRect kAsked(10, 20, 80, 60);
const PoolCase kCases[] = {
    {"the only one", {{0, kAsked}}, 0, false},
    {"the place decides among the right sizes",
     {{0, QRect(30, 20, 80, 60)}, {0, kAsked}, {0, kAsked}},
     1,
     false},
    {"the first of the right size",
     {{0, QRect(10, 20, 81, 60)}, {0, QRect(5, 5, 80, 60)}, {0, QRect(6, 6, 80, 60)}},
     1,
     true},
    {"the size counts only in the same window", {{1, kAsked}, {0, QRect(5, 5, 80, 60)}}, 1, true},
    {"else the first, with its old parent",
     {{1, QRect(1, 2, 50, 50)}, {0, QRect(3, 4, 51, 51)}},
     0,
     true},
    {"even one of the right size elsewhere", {{1, kAsked}, {0, QRect(3, 4, 51, 51)}}, 0, false},
};

class PoolChoice : public QtGLWidgetPoolTest, public ::testing::WithParamInterface<PoolCase>
{
};

TEST_P(PoolChoice, FollowsTheRules)
{
    other.show();
    QWidget* const parents[] = {window.get(), &other};
    std::vector<Tq::Ptr<QtGLWidget>> widgets;
    for (const Kept& kept : GetParam().kept)
        widgets.push_back(make(parents[kept.parent], kept.place));
    for (const auto& widget : widgets)
        ASSERT_TRUE(waitFor([&] { return exposed(*widget); }));
    for (const auto& widget : widgets)
        pool.insert(widget);
    ASSERT_EQ(pool.size(), widgets.size());

    const auto got =
        pool.get(window.get(), {kAsked.x(), kAsked.y()}, {kAsked.width(), kAsked.height()});
    const auto& expected = widgets[static_cast<std::size_t>(GetParam().expected)];
    EXPECT_EQ(got.get(), expected.get());
    EXPECT_EQ(got->geometry(), kAsked);
    EXPECT_FALSE(got->isVisible()) << "the caller shows it";
    EXPECT_EQ(got->parentWidget(),
              parents[GetParam().kept[static_cast<std::size_t>(GetParam().expected)].parent]);
    EXPECT_EQ(pool.size(), widgets.size() - 1);
}

INSTANTIATE_TEST_SUITE_P(QtGLWidgetPool, PoolChoice, ::testing::ValuesIn(kCases));

TEST_F(QtGLWidgetPoolTest, MakesAndShowsAWidgetWhenItIsEmpty)
{
    const auto widget = pool.get(window.get(), {10, 20}, {80, 60});
    EXPECT_TRUE(widget->isVisible());
    EXPECT_EQ(widget->geometry(), kAsked);
    EXPECT_EQ(widget->parentWidget(), window.get());
    EXPECT_TRUE(widget->isSharing());
}

TEST_F(QtGLWidgetPoolTest, KeepsOnlyWidgetsThatAreExposed)
{
    auto unseen = Tq::Ptr<QtGLWidget>(new QtGLWidget(window.get(), nullptr));
    EXPECT_EQ(outputOf([&] { pool.insert(unseen); }), kNotVisible);
    EXPECT_EQ(pool.size(), 0u);
    EXPECT_EQ(outputOf([&] { pool.insert(nullptr); }), "");

    auto seen = makeWidget();
    EXPECT_EQ(outputOf([&] { pool.insert(seen); }), "");
    EXPECT_FALSE(seen->isVisible());
    EXPECT_EQ(pool.size(), 1u);
}

TEST_F(QtGLWidgetPoolTest, LetsAWidgetGoWithItsParent)
{
    const int before = QtGLWidget::getLiveCount();
    {
        QWidget parent;
        parent.setGeometry(700, 150, 300, 300);
        parent.show();
        auto widget = make(&parent, kAsked);
        ASSERT_TRUE(waitFor([&] { return exposed(*widget); }));
        pool.insert(widget);
        pool.insert(makeWidget());
        EXPECT_EQ(pool.size(), 2u);
    }
    EXPECT_EQ(pool.size(), 1u);
    EXPECT_EQ(QtGLWidget::getLiveCount(), before + 1);
}

TEST_F(QtGLWidgetPoolTest, ReleasesItsWidgetsAndCanBeUsedAgain)
{
    const int before = QtGLWidget::getLiveCount();
    pool.insert(makeWidget());
    pool.shutdown();
    pool.shutdown();
    EXPECT_EQ(QtGLWidget::getLiveCount(), before);
    pool.insert(makeWidget());
    EXPECT_EQ(pool.size(), 1u);
}

} // namespace
