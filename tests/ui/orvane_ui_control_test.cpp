#include "ui/orvane_ui_control.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

#include "tests/ui/gui_test_app.h"
#include "ui/check_image.h"
#include "ui/radio_group.h"

namespace {

using OrvaneWinUI::OrvaneUIControl;
using OrvaneWinUI::RadioGroup;

struct UiControl : ::testing::Test {
    UiControl() {
        control.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&control));
    }

    QApplication& app = orv::test::GuiTestApp();  // before any widget
    OrvaneUIControl control;
};

TEST_F(UiControl, ButtonsAndCheckImagesSignal) {
    EXPECT_EQ(control.size(), QSize(1040, 680));
    struct Case {
        QWidget* button;
        void (OrvaneUIControl::*signal)();
    };
    const Case cases[] = {{control.btnExit, &OrvaneUIControl::ExitClicked},
                          {control.btnStart, &OrvaneUIControl::StartClicked},
                          {control.btnSave, &OrvaneUIControl::SaveClicked},
                          {control.btnManual, &OrvaneUIControl::ManualClicked},
                          {control.btnSupport, &OrvaneUIControl::SupportClicked},
                          {control.ckShowShotYes, &OrvaneUIControl::ShowShotYesClicked},
                          {control.ckShowShotNo, &OrvaneUIControl::ShowShotNoClicked}};
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        // The widget the window system would deliver a click at its centre to.
        QWidget* hit = QApplication::widgetAt(c.button->mapToGlobal(c.button->rect().center()));
        EXPECT_TRUE(hit == c.button || c.button->isAncestorOf(hit));
        QSignalSpy spy(&control, c.signal);
        QTest::mouseClick(c.button, Qt::LeftButton);
        EXPECT_EQ(spy.count(), 1);
    }
}

TEST_F(UiControl, RadioGroupsKeepTheirIndex) {
    std::vector<int> counts;
    for (RadioGroup* group :
         {control.radioGroupSwingLv, control.radioGroupSwingSens, control.radioGroupEffect,
          control.radioGroupClub, control.radioGroupShowShotResult, control.radioGroupCameraPreview,
          control.radioGroupSwingRecord}) {
        SCOPED_TRACE(group->Title().toStdString());
        counts.push_back(group->Count());
        QSignalSpy clicked(group, &RadioGroup::ChoiceClicked);
        EXPECT_TRUE(group->SetSelectedIndex(1));
        EXPECT_FALSE(group->SetSelectedIndex(group->Count()));
        EXPECT_FALSE(group->SetSelectedIndex(-1));
        EXPECT_EQ(group->SelectedIndex(), 1);
        EXPECT_EQ(clicked.count(), 0);  // setting is not clicking

        QTest::mouseClick(group->Choice(0), Qt::LeftButton);
        EXPECT_EQ(group->SelectedIndex(), 0);
        ASSERT_EQ(clicked.count(), 1);
        EXPECT_EQ(clicked.at(0).at(0).toInt(), 0);
    }
    EXPECT_EQ(counts, (std::vector<int>{3, 3, 2, 2, 2, 2, 2}));
    // The check images follow the show-shot choice.
    for (const int choice : {0, 1}) {
        control.radioGroupShowShotResult->SetSelectedIndex(choice);
        EXPECT_EQ(control.ckShowShotYes->IsChecked(), choice == 0);
        EXPECT_EQ(control.ckShowShotNo->IsChecked(), choice == 1);
    }
}

TEST_F(UiControl, ClubPickerAndLastShot) {
    QSignalSpy asked(&control, &OrvaneUIControl::ClubChangeRequested);
    control.SetClubs({{0x01, "Driver"}, {0x08, "7 Iron"}, {0x0F, "Putter"}});
    control.SetCurrentClub(0x08);
    EXPECT_EQ(control.clubPicker->CurrentClub(), 0x08);
    EXPECT_EQ(asked.count(), 0);  // showing the sensor's club asks for nothing

    control.clubPicker->Box()->setFocus();
    QTest::keyClick(control.clubPicker->Box(), Qt::Key_Down);
    ASSERT_EQ(asked.count(), 1);
    EXPECT_EQ(asked.at(0).at(0).toInt(), 0x0F);

    using OrvaneWinUI::ShotValue;
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kBallSpeed), "--");
    control.SetLastShot({142.37, 12.04, -2.06, 2845.6, 412.0, 98.95, "7 Iron"});
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kBallSpeed), "142.4");
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kLaunchAngle), "12.0");
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kDirection), "L 2.1");
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kBackSpin), "2846");
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kSideSpin), "R 412");
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kHeadSpeed), "99.0");
    EXPECT_EQ(control.shotPanel->ClubText(), "7 Iron");
    control.SetLastShot({100, 10, 0.01, 3000, -0.2, 80, "Driver"});
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kDirection), "0.0");
    EXPECT_EQ(control.shotPanel->ValueText(ShotValue::kSideSpin), "0");
}

}  // namespace
