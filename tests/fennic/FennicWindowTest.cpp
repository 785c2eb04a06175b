// SPDX-License-Identifier: MIT
#include "fennic/FennicWindow.h"

#include "fennic/Desk.h"
#include "linux/Contrast.h"

#include <QAccessible>
#include <QScreen>
#include <QScrollBar>

namespace vorla {

namespace {

/// Makes the desktop's text larger for as long as it lives.
class LargeText final {
public:
    explicit LargeText(int pixelSize) {
        QFont large = original_;
        large.setPixelSize(pixelSize);
        QApplication::setFont(large);
    }

    ~LargeText() { QApplication::setFont(original_); }

    LargeText(const LargeText&) = delete;
    LargeText& operator=(const LargeText&) = delete;

private:
    QFont original_ = QApplication::font();
};

double luminanceOf(const QColor& colour) {
    return luminance(colour.redF(), colour.greenF(), colour.blueF());
}

} // namespace

TEST(FennicWindow, opensAnIdleWindowOfFixedSize) {
    Desk desk;
    EXPECT_EQ(desk.window().windowTitle(), "Fennic");
    EXPECT_EQ(desk.window().size(), QSize(420, 430));
    EXPECT_EQ(desk.window().minimumSize(), desk.window().maximumSize());
    const auto flags = desk.window().windowFlags();
    EXPECT_TRUE(flags.testFlag(Qt::WindowTitleHint));
    EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::WindowMaximizeButtonHint));
    expectIdle(desk);
    EXPECT_EQ(desk.status(), "");
    EXPECT_TRUE(desk.results().empty());
    EXPECT_EQ(desk.input().toPlainText(), "");
    EXPECT_EQ(desk.window().focusWidget(), &desk.input());
    expectNothingCut(desk);
}

TEST(FennicWindow, laysItsContentOutFromTheTop) {
    Desk desk;
    const FennicLine lines[] = {fennicHeading(), fennicPrompt(), fennicHint(), fennicPrivacyNote()};
    std::vector<const QWidget*> items;
    for (const QLabel* label : desk.window().findChildren<QLabel*>()) {
        if (label->isVisible()) {
            items.push_back(label);
        }
    }
    ASSERT_EQ(items.size(), 4U);
    for (std::size_t index = 0; index < items.size(); ++index) {
        const auto* label = static_cast<const QLabel*>(items[index]);
        EXPECT_EQ(label->text().toStdString(), lines[index].text);
        EXPECT_EQ(label->font().pixelSize(), lines[index].points);
        EXPECT_TRUE(label->wordWrap());
        EXPECT_EQ(label->textInteractionFlags(), Qt::NoTextInteraction);
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
    }
    EXPECT_EQ(items[0]->font().weight(), QFont::DemiBold);
    EXPECT_EQ(items[1]->font().weight(), QFont::Normal);
    items.insert(items.begin() + 3, &desk.input());
    int top = 20;
    for (const QWidget* item : items) {
        const QPoint place = item->mapTo(&desk.window(), QPoint(0, 0));
        EXPECT_EQ(place, QPoint(20, top));
        EXPECT_EQ(item->width(), 380);
        top = place.y() + item->height() + 10;
    }
    EXPECT_EQ(desk.button().mapTo(&desk.window(), QPoint(0, 0)).y(), top);
    EXPECT_EQ(desk.button().mapTo(&desk.window(), QPoint(desk.button().width(), 0)).x(), 400);
}

TEST(FennicWindow, hasAFieldForPlainText) {
    Desk desk;
    EXPECT_EQ(desk.input().height(), 108);
    EXPECT_EQ(desk.input().font().pixelSize(), 13);
    const QPoint firstLetter = desk.input().cursorRect().topLeft() +
                               desk.input().viewport()->mapTo(&desk.input(), QPoint(0, 0));
    const int frame = desk.input().frameWidth();
    EXPECT_EQ(firstLetter, QPoint(frame + 4, frame + 6));
    QTest::keyClicks(&desk.input(), R"("it's" -- (c)... 1/2)");
    EXPECT_EQ(desk.input().toPlainText(), R"("it's" -- (c)... 1/2)");
}

TEST(FennicWindow, givesEveryControlANameAndARole) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check();
    desk.type("");
    desk.press();
    const auto roleOf = [](QWidget& widget) {
        return QAccessible::queryAccessibleInterface(&widget)->role();
    };
    const auto nameOf = [](QWidget& widget) {
        return QAccessible::queryAccessibleInterface(&widget)
            ->text(QAccessible::Name)
            .toStdString();
    };
    EXPECT_EQ(roleOf(desk.input()), QAccessible::EditableText);
    EXPECT_EQ(nameOf(desk.input()), fennicPrompt().text);
    EXPECT_EQ(roleOf(desk.button()), QAccessible::Button);
    EXPECT_EQ(nameOf(desk.button()), "Check task");
    EXPECT_EQ(nameOf(desk.window()), "Fennic");
    EXPECT_EQ(roleOf(desk.window()), QAccessible::Dialog);
    std::size_t labels = 0;
    for (QLabel* label : desk.window().findChildren<QLabel*>()) {
        if (label->isVisible()) {
            ++labels;
            EXPECT_EQ(roleOf(*label), QAccessible::StaticText);
            EXPECT_EQ(nameOf(*label), label->text().toStdString());
            EXPECT_NE(nameOf(*label), "");
        }
    }
    EXPECT_EQ(labels, 12U);
}

TEST(FennicWindow, growsWithTheLettersOfTheDesktop) {
    const LargeText large(26);
    Desk desk;
    EXPECT_EQ(
        desk.window().width(), std::min(840, desk.window().screen()->availableGeometry().width()));
    desk.server.answerWith({answer(200, goodBody)});
    desk.check();
    EXPECT_EQ(desk.resultLabels().at(0)->font().pixelSize(), 52);
    EXPECT_EQ(desk.button().font().pixelSize(), 26);
    EXPECT_EQ(desk.input().height(), 216);
}

TEST(FennicWindow, cutsNothingWithLargerLetters) {
    for (const int pixelSize : {9, 15, 17}) {
        const LargeText large(pixelSize);
        Desk desk;
        desk.server.answerWith({answer(200, goodBody), answer(500, "")});
        expectNothingCut(desk);
        desk.check();
        expectNothingCut(desk);
        desk.check();
        EXPECT_NE(desk.status(), "");
        expectNothingCut(desk);
    }
}

TEST(FennicWindow, scrollsWhatTheScreenHasNoRoomFor) {
    const LargeText large(60);
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check();
    QApplication::processEvents();
    const QSize screen = desk.window().screen()->availableGeometry().size();
    EXPECT_LE(desk.window().width(), screen.width());
    EXPECT_LE(desk.window().height(), screen.height());
    auto* area = desk.window().findChild<QScrollArea*>();
    EXPECT_EQ(area->focusPolicy(), Qt::StrongFocus);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(area)->text(QAccessible::Name), "Fennic");
    EXPECT_EQ(
        area->verticalScrollBar()->maximum() + area->viewport()->height(),
        area->widget()->height());
    for (const QLabel* label : desk.window().findChildren<QLabel*>()) {
        if (label->isVisible()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width()));
            const QRect place(label->mapTo(area->widget(), QPoint(0, 0)), label->size());
            EXPECT_TRUE(area->widget()->rect().contains(place)) << label->text().toStdString();
        }
    }
}

TEST(FennicWindow, neverShrinksWhileItIsOpen) {
    const LargeText large(17);
    Desk desk;
    desk.server.answerWith({answer(200, goodBody), staySilent});
    desk.check();
    const QSize size = desk.window().size();
    desk.press();
    EXPECT_EQ(desk.window().size(), size);
}

TEST(FennicWindow, canBeReadInLightAndDarkThemes) {
    const QPalette original = QApplication::palette();
    const std::pair<QColor, QColor> themes[] = {
        {QColor(0x23, 0x26, 0x29), QColor(0xEF, 0xF0, 0xF1)},
        {QColor(0xFC, 0xFC, 0xFC), QColor(0x2A, 0x2E, 0x32)},
        {Qt::black, Qt::white},
        {Qt::white, Qt::black}};
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check();
    for (const auto& [text, background] : themes) {
        QPalette theme = original;
        theme.setColor(QPalette::WindowText, text);
        theme.setColor(QPalette::Window, background);
        QApplication::setPalette(theme);
        QApplication::processEvents();
        for (const QLabel* label : desk.window().findChildren<QLabel*>()) {
            const QColor colour = label->palette().color(label->foregroundRole());
            EXPECT_GE(contrast(luminanceOf(colour), luminanceOf(background)), 4.5)
                << label->text().toStdString();
            const bool isSecondary = label->font().pixelSize() < 13;
            EXPECT_EQ(colour != text, isSecondary) << label->text().toStdString();
        }
    }
    QApplication::setPalette(original);
}

} // namespace vorla
