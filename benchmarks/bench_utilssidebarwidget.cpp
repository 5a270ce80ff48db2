// A navigation of 5 sections and 20 to 2,000 pages in a UtilsSidebarWidget, beside the same widgets put together by
// hand, bare tool buttons in a QListWidget for each section, and beside a QTreeWidget, which has no widgets for its
// rows, no style sheet and no shadow.
//
// "build": everything is created and painted once. "select": every page in turn is selected, from section to section,
// and the event loop runs once after each; what is opened and closed does so without animation in the other two.
//
// A section of ours draws its two pictures for three scales when it is made, which is most of what few pages cost. One
// that is left has all its buttons unchecked and its list folded: "select" grows with the pages of a section, too.

#include "BenchmarkMain.h"

#include <UtilsSidebarWidget.h>

#include <QApplication>
#include <QButtonGroup>
#include <QGraphicsDropShadowEffect>
#include <QListWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

namespace {

constexpr int SectionCount = 5;
constexpr int RowHeight = 30;
constexpr int MainButtonHeight = 58;
constexpr QSize MainIconSize(21, 21);
constexpr QSize ColumnSize(250, 1600);

const QString UncheckedIcon = QStringLiteral(":/images/power_light.svg");
const QString CheckedIcon = QStringLiteral(":/images/power_yellow.svg");

struct Navigation
{
    std::unique_ptr<QWidget> widget;
    std::function<void(int section, int page)> select;
};

QString caption(int page)
{
    return QStringLiteral("Page %1").arg(page);
}

Navigation makeSidebar(int pagesPerSection)
{
    auto column = std::make_unique<UtilsSidebarWidget>();
    UtilsSidebarWidget *sidebar = column.get();
    for (int section = 0; section < SectionCount; ++section) {
        const int id = sidebar->addItem(QStringLiteral("SECTION"), UncheckedIcon, CheckedIcon);
        for (int page = 0; page < pagesPerSection; ++page)
            sidebar->addChild(caption(page), id, page);
    }
    return {std::move(column), [sidebar](int section, int page) { sidebar->checkChild(section + 1, page + 1); }};
}

Navigation makeBareWidgets(int pagesPerSection)
{
    auto column = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(column.get());
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *sections = new QButtonGroup(column.get());
    auto *pages = new QButtonGroup(column.get());
    for (int section = 0; section < SectionCount; ++section) {
        auto *button = new QToolButton;
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        button->setMinimumHeight(MainButtonHeight);
        button->setCheckable(true);
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setText(QStringLiteral("SECTION"));
        button->setIconSize(MainIconSize);
        button->setIcon(QIcon(UncheckedIcon));
        button->setStyleSheet(QStringLiteral("padding: 1px 0px 1px 9px;"));
        auto *shadow = new QGraphicsDropShadowEffect(button);
        shadow->setBlurRadius(8);
        shadow->setOffset(0);
        button->setGraphicsEffect(shadow);
        layout->addWidget(button);
        sections->addButton(button, section);

        auto *list = new QListWidget;
        list->setFrameShape(QFrame::NoFrame);
        list->setGridSize(QSize(0, RowHeight));
        list->setMaximumHeight(0);
        layout->addWidget(list);
        for (int page = 0; page < pagesPerSection; ++page) {
            auto *item = new QListWidgetItem(list);
            auto *child = new QToolButton;
            child->setMinimumHeight(RowHeight);
            child->setCheckable(true);
            child->setText(caption(page));
            list->setItemWidget(item, child);
            pages->addButton(child, section * pagesPerSection + page);
        }
        QObject::connect(button, &QToolButton::toggled, list, [button, list, pagesPerSection](bool checked) {
            list->setMaximumHeight(checked ? pagesPerSection * RowHeight : 0);
            button->setIcon(QIcon(checked ? CheckedIcon : UncheckedIcon));
        });
    }
    layout->addStretch();
    return {std::move(column), [sections, pages, pagesPerSection](int section, int page) {
                sections->button(section)->setChecked(true);
                pages->button(section * pagesPerSection + page)->setChecked(true);
            }};
}

Navigation makeTree(int pagesPerSection)
{
    auto widget = std::make_unique<QTreeWidget>();
    QTreeWidget *tree = widget.get();
    tree->setHeaderHidden(true);
    tree->setAutoExpandDelay(-1);
    for (int section = 0; section < SectionCount; ++section) {
        auto *top = new QTreeWidgetItem(tree, {QStringLiteral("SECTION")});
        top->setIcon(0, QIcon(UncheckedIcon));
        for (int page = 0; page < pagesPerSection; ++page)
            new QTreeWidgetItem(top, {caption(page)});
    }
    return {std::move(widget), [tree](int section, int page) {
                for (int i = 0; i < SectionCount; ++i)
                    tree->topLevelItem(i)->setExpanded(i == section);
                tree->setCurrentItem(tree->topLevelItem(section)->child(page));
            }};
}

void runEventLoop()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

void build(benchmark::State &state, Navigation (*make)(int))
{
    for (auto _ : state) {
        Navigation navigation = make(int(state.range(0)) / SectionCount);
        navigation.widget->resize(ColumnSize);
        navigation.widget->show();
        runEventLoop();

        state.PauseTiming();
        navigation.widget.reset();
        runEventLoop();
        state.ResumeTiming();
    }
}

void select(benchmark::State &state, Navigation (*make)(int))
{
    const int pagesPerSection = int(state.range(0)) / SectionCount;
    Navigation navigation = make(pagesPerSection);
    navigation.widget->resize(ColumnSize);
    navigation.widget->show();
    runEventLoop();
    for (auto _ : state) {
        for (int page = 0; page < pagesPerSection; ++page) {
            for (int section = 0; section < SectionCount; ++section) {
                navigation.select(section, page);
                runEventLoop();
            }
        }
    }
    state.counters["us_per_page"] = benchmark::Counter(double(state.range(0)) * double(state.iterations()) / 1e6,
                                                       benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void sizes(benchmark::internal::Benchmark *work)
{
    work->Arg(20)->Arg(200)->Arg(2'000)->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK_CAPTURE(build, UtilsSidebarWidget, makeSidebar)->Apply(sizes);
BENCHMARK_CAPTURE(build, bare_QListWidgets, makeBareWidgets)->Apply(sizes);
BENCHMARK_CAPTURE(build, QTreeWidget, makeTree)->Apply(sizes);
BENCHMARK_CAPTURE(select, UtilsSidebarWidget, makeSidebar)->Apply(sizes);
BENCHMARK_CAPTURE(select, bare_QListWidgets, makeBareWidgets)->Apply(sizes);
BENCHMARK_CAPTURE(select, QTreeWidget, makeTree)->Apply(sizes);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
