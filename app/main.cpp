#include "app/orvane_win_app.h"

int main(int argc, char** argv) {
    return orv::COrvaneWinApp().Run(argc, argv);
}
