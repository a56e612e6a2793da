#include "ui/ui_theme.h"

namespace OrvaneWinUI {

QString ControlStyleSheet() {
    return QStringLiteral(R"(
#OrvaneUIControl { background: #15191e; }
QLabel { color: #eceff4; font-size: 15px; }
QLabel#caption { color: #8c96a2; font-size: 13px; font-weight: 600; letter-spacing: 1px; }
QLabel#brand { color: #d3ff46; font-size: 28px; font-weight: 800; letter-spacing: 2px; }
QLabel#brandSub { color: #8c96a2; font-size: 13px; }
QLabel#statusValue { font-size: 23px; font-weight: 700; }
QLabel#shotValue { color: #eceff4; font-size: 34px; font-weight: 700; }
QLabel#shotUnit { color: #8c96a2; font-size: 13px; }
QLabel#shotClub { color: #d3ff46; font-size: 17px; font-weight: 700; }
QFrame#tile, QFrame#card, QFrame#shotPanel {
    background: #20262d; border: 1px solid #2c343d; border-radius: 10px; }
QFrame#shotCell { background: #191e24; border-radius: 8px; }
QRadioButton { color: #eceff4; font-size: 15px; spacing: 8px; padding: 2px 10px 2px 0; }
QRadioButton::indicator { width: 16px; height: 16px; border-radius: 9px;
    border: 2px solid #5b6673; background: #15191e; }
QRadioButton::indicator:checked { border: 2px solid #d3ff46; background: qradialgradient(
    cx:0.5, cy:0.5, radius:0.5, fx:0.5, fy:0.5, stop:0 #d3ff46, stop:0.45 #d3ff46,
    stop:0.55 #15191e, stop:1 #15191e); }
QRadioButton::indicator:hover { border-color: #a9b4c0; }
QPushButton { color: #eceff4; background: #2a323b; border: 1px solid #3a444f;
    border-radius: 8px; font-size: 16px; font-weight: 600; padding: 10px 22px; }
QPushButton:hover { background: #343e49; }
QPushButton:pressed { background: #1f252c; }
QPushButton#primary { color: #15191e; background: #d3ff46; border: none; }
QPushButton#primary:hover { background: #e0ff7a; }
QPushButton#quiet { background: transparent; border: 1px solid #3a444f; }
QComboBox { color: #eceff4; background: #15191e; border: 1px solid #3a444f;
    border-radius: 6px; padding: 6px 10px; font-size: 15px; min-width: 170px; }
QComboBox::drop-down { border: none; background: transparent; width: 26px; }
QLineEdit { color: #eceff4; background: #15191e; border: 1px solid #3a444f;
    border-radius: 6px; padding: 6px 10px; font-size: 15px; }
QLineEdit:focus { border-color: #d3ff46; }
QComboBox QAbstractItemView { color: #eceff4; background: #20262d;
    selection-background-color: #3a444f; }
)");
}

}  // namespace OrvaneWinUI
