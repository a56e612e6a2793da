// The shot history in the window: the shots of this session and earlier ones
// with a club and date filter, the figures per club, the shot shape and the
// ball speed over the session as plots, replay of clips still in the ring,
// and CSV export.
#pragma once

#include <QDialog>
#include <filesystem>
#include <vector>

#include "history/history_store.h"

class QChartView;
class QComboBox;
class QDateEdit;
class QPushButton;
class QTableWidget;
class QTabWidget;

namespace orv {

class HistoryDialog : public QDialog {
    Q_OBJECT
public:
    // `session` is this run's session (0: the newest in the file).
    HistoryDialog(std::filesystem::path file, int64_t session, QWidget* parent = nullptr);

    // Reads the file again with the filter as set.
    void Reload();
    // Writes the selected shots, or all shown, as CSV; false when the file cannot be written.
    bool ExportTo(const std::filesystem::path& csv, bool selectedOnly);
    // Plays the clip of shot row `row` in the replay window; false when it is gone.
    bool Replay(int row);

    QComboBox* clubFilter;
    QDateEdit* fromDate;
    QDateEdit* toDate;
    QTabWidget* tabs;
    QTableWidget* shotTable;
    QTableWidget* figureTable;
    QChartView* shapeChart;  // launch direction against side spin, a series per club
    QChartView* speedChart;  // ball speed over the session
    QPushButton* btnReplay;
    QPushButton* btnExportSelected;
    QPushButton* btnExportAll;

private:
    history::HistoryFilter Filter() const;
    void FillShots();
    void FillFigures(const std::vector<history::ClubFigures>& figures);
    void FillShapeChart();
    void FillSpeedChart();
    void FillClubChoices(const std::vector<history::ClubFigures>& figures);
    void UpdateButtons();
    void AskAndExport(bool selectedOnly);

    const std::filesystem::path file_;
    int64_t session_;
    std::vector<history::HistoryRow> rows_;
};

}  // namespace orv
