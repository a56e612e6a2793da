#include "app/help_links.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QString>
#include <QUrl>

#include "common/debug_log.h"

namespace orv {

namespace {

const char* PagePath(HelpPage page) {
    switch (page) {
        case HelpPage::kUserGuide:
            return "/userguide/";
        case HelpPage::kSupport:
            return "/support.html";
        case HelpPage::kSimulator:
            return "/e6/";
        case HelpPage::kFirmware:
            return "/firmware/";
    }
    return "/";
}

bool AskThenOpen(QWidget* parent, QMessageBox::Icon icon, const QString& question,
                 const std::string& url) {
    QMessageBox box(icon, QString(), question, QMessageBox::Ok | QMessageBox::Cancel, parent);
    if (box.exec() != QMessageBox::Ok) {
        return false;
    }
    return OpenUrl(url);
}

}  // namespace

std::string HelpPageUrl(const std::string& site, HelpPage page) {
    return site + PagePath(page);
}

bool OpenUrl(const std::string& url) {
    if (!QDesktopServices::openUrl(QUrl(QString::fromStdString(url)))) {
        LOG_ERROR("QDesktopServices::openUrl error:0x%x\n", 0u);
        return false;
    }
    return true;
}

bool AskAndOpen(QWidget* parent, const QString& question, const std::string& url) {
    return AskThenOpen(parent, QMessageBox::Question, question, url);
}

bool AskPlainAndOpen(QWidget* parent, const QString& question, const std::string& url) {
    return AskThenOpen(parent, QMessageBox::NoIcon, question, url);
}

bool InformAndOpen(QWidget* parent, const QString& text, const std::string& url) {
    QMessageBox box(QMessageBox::Information, QString(), text, QMessageBox::Ok, parent);
    box.exec();
    return OpenUrl(url);
}

}  // namespace orv
