#include "app/history_dialog.h"

#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QDateTime>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineSeries>
#include <QMessageBox>
#include <QPushButton>
#include <QScatterSeries>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QValueAxis>
#include <cmath>
#include <fstream>
#include <map>

#include "app/shot_text.h"
#include "history/clip_state.h"
#include "history/history_text.h"
#include "video/player_wnd.h"

namespace orv {

namespace {

const QDate kEarliest(2000, 1, 1);

QString Number(double value, int decimals) {
    return std::isfinite(value) ? QLocale().toString(value, 'f', decimals) : QString();
}

QString Figure(const history::Spread& spread, int decimals) {
    return Number(spread.mean, decimals) + QStringLiteral(" ± ") +
           Number(spread.deviation, decimals);
}

QTableWidget* MakeTable(const QStringList& headers) {
    auto* table = new QTableWidget(0, static_cast<int>(headers.size()));
    table->setHorizontalHeaderLabels(headers);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    return table;
}

void SetRow(QTableWidget* table, int row, const QStringList& cells) {
    for (int column = 0; column < cells.size(); ++column) {
        table->setItem(row, column, new QTableWidgetItem(cells[column]));
    }
}

QChartView* MakeChart(const QString& title) {
    auto* chart = new QChart;
    chart->setTitle(title);
    auto* view = new QChartView(chart);
    view->setRenderHint(QPainter::Antialiasing);
    view->setMinimumSize(480, 320);
    return view;
}

// Axes fitted to the series, replacing any from an earlier fill.
void AddAxes(QChart* chart, const QString& xTitle, const QString& yTitle) {
    chart->createDefaultAxes();
    const QList<QAbstractAxis*> x = chart->axes(Qt::Horizontal);
    const QList<QAbstractAxis*> y = chart->axes(Qt::Vertical);
    if (!x.isEmpty()) {
        x.first()->setTitleText(xTitle);
    }
    if (!y.isEmpty()) {
        y.first()->setTitleText(yTitle);
    }
}

QString RowOutcome(Orvane::ShotOutcome outcome) {
    if (outcome == Orvane::ShotOutcome::kSent) {
        return QCoreApplication::translate("orv::HistoryDialog", "sent");
    }
    return OutcomeText(outcome);
}

}  // namespace

HistoryDialog::HistoryDialog(std::filesystem::path file, int64_t session, QWidget* parent)
    : QDialog(parent), file_(std::move(file)), session_(session) {
    setWindowTitle(tr("Shot history"));
    resize(980, 620);
    auto* layout = new QVBoxLayout(this);

    auto* filters = new QHBoxLayout;
    clubFilter = new QComboBox;
    clubFilter->addItem(tr("All clubs"), 0);
    fromDate = new QDateEdit(kEarliest);
    toDate = new QDateEdit(QDate::currentDate());
    for (QDateEdit* edit : {fromDate, toDate}) {
        edit->setCalendarPopup(true);
    }
    filters->addWidget(new QLabel(tr("Club")));
    filters->addWidget(clubFilter);
    filters->addWidget(new QLabel(tr("From")));
    filters->addWidget(fromDate);
    filters->addWidget(new QLabel(tr("To")));
    filters->addWidget(toDate);
    filters->addStretch(1);
    layout->addLayout(filters);

    shotTable =
        MakeTable({tr("Time"), tr("Club"), tr("Ball speed"), tr("Launch"), tr("Direction"),
                   tr("Back spin"), tr("Side spin"), tr("Head speed"), tr("Shot"), tr("Clip")});
    figureTable = MakeTable({tr("Club"), tr("Shots"), tr("Ball speed"), tr("Launch"),
                             tr("Direction"), tr("Back spin"), tr("Side spin"), tr("Head speed")});
    shapeChart = MakeChart(tr("Shot shape: launch direction against side spin"));
    speedChart = MakeChart(tr("Ball speed over the session"));
    tabs = new QTabWidget;
    tabs->addTab(shotTable, tr("Shots"));
    tabs->addTab(figureTable, tr("Per club"));
    tabs->addTab(shapeChart, tr("Shot shape"));
    tabs->addTab(speedChart, tr("Ball speed"));
    layout->addWidget(tabs, 1);

    auto* buttons = new QHBoxLayout;
    btnReplay = new QPushButton(tr("Replay clip"));
    btnExportSelected = new QPushButton(tr("Export selected…"));
    btnExportAll = new QPushButton(tr("Export all…"));
    auto* btnClose = new QPushButton(tr("Close"));
    buttons->addWidget(btnReplay);
    buttons->addStretch(1);
    buttons->addWidget(btnExportSelected);
    buttons->addWidget(btnExportAll);
    buttons->addWidget(btnClose);
    layout->addLayout(buttons);

    connect(btnClose, &QPushButton::clicked, this, &QDialog::accept);
    connect(btnReplay, &QPushButton::clicked, this, [this] { Replay(shotTable->currentRow()); });
    connect(btnExportSelected, &QPushButton::clicked, this, [this] { AskAndExport(true); });
    connect(btnExportAll, &QPushButton::clicked, this, [this] { AskAndExport(false); });
    connect(shotTable, &QTableWidget::itemSelectionChanged, this, [this] { UpdateButtons(); });
    connect(clubFilter, &QComboBox::currentIndexChanged, this, [this] { Reload(); });
    connect(fromDate, &QDateEdit::dateChanged, this, [this] { Reload(); });
    connect(toDate, &QDateEdit::dateChanged, this, [this] { Reload(); });
    Reload();
}

history::HistoryFilter HistoryDialog::Filter() const {
    history::HistoryFilter filter;
    filter.club = clubFilter->currentData().toInt();
    // Left at their widest, the dates set no bound (the figures then come from running sums).
    if (fromDate->date() > kEarliest) {
        filter.fromMs = fromDate->date().startOfDay().toMSecsSinceEpoch();
    }
    if (toDate->date() < QDate::currentDate()) {
        filter.toMs = toDate->date().endOfDay().toMSecsSinceEpoch();
    }
    return filter;
}

void HistoryDialog::Reload() {
    std::unique_ptr<history::HistoryStore> store =
        std::filesystem::exists(file_) ? history::HistoryStore::Open(file_) : nullptr;
    rows_.clear();
    std::vector<history::ClubFigures> figures;
    if (store) {
        if (session_ == 0) {
            session_ = store->LatestSession();
        }
        rows_ = store->Shots(Filter());
        figures = store->Figures(Filter());
        FillClubChoices(store->Figures({}));
    }
    FillShots();
    FillFigures(figures);
    FillShapeChart();
    FillSpeedChart();
    UpdateButtons();
}

void HistoryDialog::FillClubChoices(const std::vector<history::ClubFigures>& figures) {
    const QSignalBlocker quiet(clubFilter);
    const int current = clubFilter->currentData().toInt();
    while (clubFilter->count() > 1) {
        clubFilter->removeItem(1);
    }
    for (const history::ClubFigures& club : figures) {
        clubFilter->addItem(ClubName(club.club), club.club);
    }
    clubFilter->setCurrentIndex(std::max(0, clubFilter->findData(current)));
}

void HistoryDialog::FillShots() {
    shotTable->setRowCount(static_cast<int>(rows_.size()));
    for (int row = 0; row < static_cast<int>(rows_.size()); ++row) {
        const Orvane::ShotReport& shot = rows_[static_cast<size_t>(row)].shot;
        QString clip;
        if (!shot.clip.empty()) {
            clip = history::ClipStillThere(shot.clip, shot.wallTimeMs)
                       ? QString::fromStdString(std::filesystem::path(shot.clip).filename())
                       : tr("gone");
        }
        SetRow(shotTable, row,
               {QLocale().toString(QDateTime::fromMSecsSinceEpoch(shot.wallTimeMs),
                                   QLocale::ShortFormat),
                ClubName(shot.club), Number(shot.ball.BallSpeed, 1),
                Number(shot.ball.LaunchAngle, 1), Number(shot.ball.LaunchDirection, 1),
                Number(shot.ball.BackSpin, 0), Number(shot.ball.SideSpin, 0),
                Number(shot.clubData.ClubHeadSpeed, 1), RowOutcome(shot.outcome), clip});
    }
    shotTable->scrollToBottom();
}

void HistoryDialog::FillFigures(const std::vector<history::ClubFigures>& figures) {
    figureTable->setRowCount(static_cast<int>(figures.size()));
    int row = 0;
    for (const history::ClubFigures& club : figures) {
        SetRow(figureTable, row++,
               {ClubName(club.club), QString::number(club.count), Figure(club.ballSpeed, 1),
                Figure(club.launchAngle, 1), Figure(club.direction, 1), Figure(club.backSpin, 0),
                Figure(club.sideSpin, 0), Figure(club.headSpeed, 1)});
    }
}

void HistoryDialog::FillShapeChart() {
    QChart* chart = shapeChart->chart();
    chart->removeAllSeries();
    std::map<int, QScatterSeries*> perClub;
    for (const history::HistoryRow& row : rows_) {
        const Orvane::ShotReport& shot = row.shot;
        if (!std::isfinite(shot.ball.SideSpin) || !std::isfinite(shot.ball.LaunchDirection)) {
            continue;
        }
        QScatterSeries*& series = perClub[shot.club];
        if (series == nullptr) {
            series = new QScatterSeries;
            series->setName(ClubName(shot.club));
            series->setMarkerSize(9);
        }
        series->append(shot.ball.SideSpin, shot.ball.LaunchDirection);
    }
    for (const auto& [club, series] : perClub) {
        chart->addSeries(series);
    }
    AddAxes(chart, tr("Side spin (rpm)"), tr("Launch direction (deg)"));
}

void HistoryDialog::FillSpeedChart() {
    QChart* chart = speedChart->chart();
    chart->removeAllSeries();
    auto* series = new QLineSeries;
    series->setName(tr("Ball speed (mph)"));
    int number = 0;
    for (const history::HistoryRow& row : rows_) {
        if (row.session == session_ && std::isfinite(row.shot.ball.BallSpeed)) {
            series->append(++number, row.shot.ball.BallSpeed);
        }
    }
    series->setPointsVisible(true);
    chart->addSeries(series);
    AddAxes(chart, tr("Shot"), tr("Ball speed (mph)"));
}

void HistoryDialog::UpdateButtons() {
    const int row = shotTable->currentRow();
    const bool selected =
        row >= 0 && row < static_cast<int>(rows_.size()) && !shotTable->selectedItems().isEmpty();
    btnReplay->setEnabled(selected &&
                          history::ClipStillThere(rows_[static_cast<size_t>(row)].shot.clip,
                                                  rows_[static_cast<size_t>(row)].shot.wallTimeMs));
    btnExportSelected->setEnabled(selected);
    btnExportAll->setEnabled(!rows_.empty());
}

bool HistoryDialog::Replay(int row) {
    if (row < 0 || row >= static_cast<int>(rows_.size())) {
        return false;
    }
    const Orvane::ShotReport& shot = rows_[static_cast<size_t>(row)].shot;
    if (!history::ClipStillThere(shot.clip, shot.wallTimeMs)) {
        return false;
    }
    // The golfer asked for this clip: any replay still showing makes way.
    PlayerWnd* player = PlayerWnd::GetInstance();
    player->Close();
    if (!player->Create() || !player->OpenURL(shot.clip)) {
        player->Close();
        return false;
    }
    return true;
}

bool HistoryDialog::ExportTo(const std::filesystem::path& csv, bool selectedOnly) {
    std::vector<history::HistoryRow> chosen;
    if (selectedOnly) {
        for (const QModelIndex& index : shotTable->selectionModel()->selectedRows()) {
            chosen.push_back(rows_[static_cast<size_t>(index.row())]);
        }
        std::sort(chosen.begin(), chosen.end(),
                  [](const auto& a, const auto& b) { return a.id < b.id; });
    } else {
        chosen = rows_;
    }
    std::ofstream out(csv, std::ios::binary | std::ios::trunc);
    history::WriteCsv(chosen, out);
    out.flush();
    return static_cast<bool>(out);
}

void HistoryDialog::AskAndExport(bool selectedOnly) {
    const QString name = QFileDialog::getSaveFileName(
        this, tr("Export shots"), QStringLiteral("shots.csv"), tr("CSV files (*.csv)"));
    if (name.isEmpty()) {
        return;
    }
    if (!ExportTo(name.toStdString(), selectedOnly)) {
        QMessageBox::warning(this, windowTitle(), tr("The file could not be written."));
    }
}

}  // namespace orv
