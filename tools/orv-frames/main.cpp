// Prints every command frame the application sends to the sensor, with its
// name from the command table, as the packet dump shows them.
#include <cstdio>

#include "common/debug_log.h"
#include "protocol/command_models.h"

namespace {

void Dump(OrvCmdBaseModel& command) {
    bb* frame = command.MakeSendPacket();
    const __code_tag* tag = OrvGetCommandCodeDef(frame->data[0]);
    PrintRaw("Send Command: %s\n", tag != nullptr ? tag->name : "?");
    PrintRaw("[D] >> %s\n", bytesToHexString(frame->data, frame->size).c_str());
}

}  // namespace

int main() {
    ShowLog(false, true);
    OrvCmdFWVersionReqModel version;
    OrvCmdClubInfoReqModel clubInfo;
    OrvCmdStateSyncModel stateSync(2, 3, 0);
    OrvCmdTimeSyncReqModel timeSync(13, 45, 30, 1);
    OrvCmdBatteryStateReqModel battery;
    OrvCmdHandsReqModel hands(1);
    OrvCmdSystemSettingModel setting(0, 0, 1, 1);
    OrvCmdManualClubSelectModel driver(1, -70, 50, 1000, 2200, 8.0f);
    OrvCmdRawDataReqModel raw;
    for (OrvCmdBaseModel* command :
         std::initializer_list<OrvCmdBaseModel*>{&version, &clubInfo, &stateSync, &timeSync,
                                                 &battery, &hands, &setting, &driver, &raw}) {
        Dump(*command);
    }
    return 0;
}
