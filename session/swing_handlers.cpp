// Reactions to the sensor's records and to the simulator's notifications:
// keeping both sides on the same club and turning swings into shots.
#include <cmath>
#include <cstdio>

#include "common/clock.h"
#include "common/debug_log.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "common/user_depends_data.h"
#include "protocol/code_tables.h"
#include "session/orv_manager.h"
#include "simulator/club_tables.h"
#include "simulator/shot_records.h"
#include "simulator/trusim_messages.h"

namespace Orvane {

namespace {

constexpr int kPutter = 15;
// A swing shorter than this is a waggle, not a shot (the putter excepted).
constexpr float kMinSwingDistance = 5.0f;
constexpr int kLowBatteryPercent = 10;
// The sensor reports its signed angles as magnitudes with this direction code for negative.
constexpr int kNegativeDirection = 5;

// The simulator knows the sensor's 7-wood slot as the 3-iron and its gap wedge as the sand wedge.
int SensorClubToSimulator(int club) {
    if (club == 4) {
        return 16;
    }
    if (club == 12) {
        return 13;
    }
    return club;
}

std::string NumberText(int value) {
    return std::to_string(value);
}

bool AllFinite(std::initializer_list<double> values) {
    for (double v : values) {
        if (!std::isfinite(v)) {
            return false;
        }
    }
    return true;
}

int SensitivityLevel() {
    return gUserDependsData.swingSensitivity.load();
}

}  // namespace

void OrvManager::SendClubSelect(int club, bool wake) {
    OrvCmdManualClubSelectModel select = MakeClubSelectCommand(club, SensitivityLevel());
    if (wake) {
        EnqueueCommand(select);
    } else {
        PushSendQ(select);
    }
}

void OrvManager::ChangeClub(int club, bool wake) {
    if (club == 0) {
        return;
    }
    // The sensor has no 3-iron slot: the simulator's 3-iron is its 7-wood.
    const int c = club == 16 ? 4 : club;
    if (c == state->clubCode.load()) {
        return;
    }
    // The sensor confirms with a club-info record; clubCode follows that, not this request.
    SendClubSelect(c, wake);
}

void OrvManager::SendHands(int value) {
    if (state->hands.exchange(value) == value) {
        return;
    }
    OrvCmdHandsReqModel hands(value);
    EnqueueCommand(hands);
}

void OrvManager::SendSystemSetting(bool flag) {
    OrvCmdSystemSettingModel setting(0, 0, 1, flag ? 1 : 0);
    EnqueueCommand(setting);
}

void OrvManager::SendClubToSimulator(int sensorClub) {
    E6TruSimClient* client = e6.load();
    if (client != nullptr) {
        client->SendClubType(SensorClubToSimulator(sensorClub));
    }
}

void OrvManager::HandleEcho(const OrvDataEchoModel& record) {
    const __code_tag* event = OrvGetCommandCodeDef(record.event);
    const __code_tag* result = OrvGetResultCodeDef(record.result);
    // Only an unknown code is worth a line; a fully understood echo is silent.
    if (event == nullptr && result != nullptr) {
        LOG_INFO("Echo Unknown event: %d\n", record.event);
    } else if (event != nullptr && result == nullptr) {
        LOG_INFO("Echo Unknown result: %d\n", record.result);
    } else if (event == nullptr && result == nullptr) {
        LOG_INFO("Echo event: %s, result: %s\n", NumberText(record.event).c_str(),
                 NumberText(record.result).c_str());
    }
}

void OrvManager::HandleClubInfo(const OrvDataClubInfoModel& record) {
    const int club = record.club;
    if (club == 0) {
        return;
    }
    if (state->clubCode.load() == 0) {
        // First report on this link: hand the sensor the user's sensitivity for it.
        SendClubSelect(club, true);
    }
    state->clubCode = club;
    const int mapped = SensorClubToSimulator(club);
    const __code_tag* tag = OrvGetClubCodeDef(static_cast<uint8_t>(mapped));
    if (tag == nullptr) {
        LOG_INFO("Unknown club: %d\n", mapped);
        return;
    }
    LOG_INFO("Club: %s\n", tag->description);
    E6TruSimClient* client = e6.load();
    if (IsSimulatorReady() && client->GetCurrentClub() != static_cast<uint32_t>(mapped)) {
        client->SendClubType(mapped);
    }
}

void OrvManager::HandleBatteryState(const OrvDataBatteryStateModel& record) {
    LOG_INFO("Battery: %d%%\n", record.battery);
    state->battery = record.battery;
    if (OrvManagerCallback* ui = callback.load()) {
        ui->OnOrvOrvaneBatteryState(static_cast<int>(record.battery));
    }
    if (record.battery < kLowBatteryPercent) {
        TTS_Speak(GetStringRes(168));
    }
}

void OrvManager::HandleFWVersion(const OrvDataFWVersionModel& record) {
    state->SetFwVersion(record.version);
    LOG_INFO("FW version: %s\n", record.version);
    // Only now does the user hear and see "connected".
    if (OrvManagerCallback* ui = callback.load()) {
        TTS_Speak(GetStringRes(162));
        ui->OnOrvOrvaneConnectionChanged(3);
    }
    OrvCmdStateSyncModel sync(2, 3, 0);
    EnqueueCommand(sync);
}

void OrvManager::HandleRaw(const OrvDataRawModel& record) {
    if (rawFile != nullptr) {
        std::fprintf(rawFile, "%d,%d,%d,%d,%d,%d,%d\n", record.ax, record.ay, record.az, record.gx,
                     record.gy, record.gz, record.interval * 1000);
    }
    if (record.last == 0) {
        OrvCmdRawDataReqModel next;
        EnqueueCommand(next);
        return;
    }
    if (rawFile != nullptr) {
        std::fclose(rawFile);
        rawFile = nullptr;
    }
    LOG_INFO("Sensor raw data receiving finished.\n");
}

void OrvManager::HandleSimRaw(const OrvDataSimRawModel& record) {
    const int step = record.step;
    LOG_INFO("Step state: %d\n", step);
    LOG_INFO("Sim raw ax: %d, ay: %d, az: %d, gx: %d, gy: %d, gz: %d\n", record.ax, record.ay,
             record.az, record.gx, record.gy, record.gz);
    E6TruSimClient* client = e6.load();
    if (IsSimulatorReady() && client->GetArmState() == 0 && client->GetCurrentClub() != 0) {
        if (step == 2) {
            if (RecordingControl* rec = recording.load()) {
                rec->ClosePlayer();
            }
            StopBackSwingTimeoutThread();
            TTS_Speak(GetStringRes(172));
            StartRecording();
        } else if (step == 3) {
            LOG_INFO("Enter Backswing.\n");
            // Stored before the time-out starts: its first pass would take the
            // address step still held from step 2 for a new swing and cancel.
            state->stepState = step;
            RecordingControl* rec = recording.load();
            if (rec != nullptr && rec->IsRecordingAvailable()) {
                StartBackSwingTimeoutThread();
            }
        } else if (step == 1) {
            LOG_INFO("Swing cancel/finish.\n");
            HandleSwingAbort(nullptr);
        }
    }
    if (step == 2) {
        if (OrvManagerCallback* ui = callback.load()) {
            ui->OnOrvReady();
        }
    }
    state->stepState = step;
}

void OrvManager::HandleSwingAbort(const OrvDataSwingAbort* record) {
    if (record != nullptr) {
        LOG_INFO("Abort step: %d\n", record->step);
    }
    StopBackSwingTimeoutThread();
    StopRecording(0);
}

void OrvManager::HandleSwingInfo(const OrvDataSwingInfoModel& record) {
    LOG_INFO("SwingInfo\n");
    record.ToLog();
    StopBackSwingTimeoutThread();

    E6TruSimClient* client = e6.load();
    const bool simulatorReady = IsSimulatorReady();
    int club = 0;
    if (simulatorReady) {
        club = static_cast<int>(client->GetCurrentClub());
    } else {
        club = state->clubCode.load();
        if (club == 0) {
            return;
        }
    }
    if (club != kPutter && record.SwingDistance < kMinSwingDistance) {
        return;
    }

    if (config.playShot) {
        config.playShot();
    }
    StopRecording(2);

    ShotReport report;
    report.wallTimeMs = WallClockMs();
    report.sensorClub = state->clubCode.load();
    report.club = club;
    report.clubName = E6_GetClubTypeName(club);
    report.headSpeed = record.HeadSpeed;
    report.path =
        record.ClubPathDir == kNegativeDirection ? -double{record.ClubPath} : record.ClubPath;
    report.face =
        record.FaceAngleDir == kNegativeDirection ? -double{record.FaceAngle} : record.FaceAngle;
    report.tempo = record.Tempo;
    report.swingDistance = record.SwingDistance;
    if (simulatorReady) {
        report.distanceToPin = client->GetDistanceToPin();
    }
    RecordingControl* rec = recording.load();
    if (rec != nullptr && state->recordingStarted.load()) {
        report.clip = rec->CurrentClip();
    }
    double ratio = 0.0;
    if (report.distanceToPin > 0.0) {
        ratio = record.SwingDistance / report.distanceToPin;
    }
    report.ball = E6_MakeBallData(club, state->hands.load(), report.headSpeed, report.path,
                                  report.face, ratio);
    report.clubData = E6_MakeClubData(report.headSpeed, report.path, report.face);
    const E6BallData& ball = report.ball;
    const E6ClubData& clubData = report.clubData;
    if (simulatorReady) {
        report.outcome = ShotOutcome::kSent;
    } else if (client != nullptr && client->IsConnected()) {
        report.outcome = ShotOutcome::kNotAuthenticated;
    } else {
        report.outcome = ShotOutcome::kNoSimulator;
    }
    // An unknown club gives a zero table row; the simulator cannot take "nan".
    if (!AllFinite({ball.BackSpin, ball.BallSpeed, ball.LaunchAngle, ball.LaunchDirection,
                    ball.SideSpin, clubData.ClubHeadSpeed, clubData.ClubAngleFace,
                    clubData.ClubAnglePath})) {
        LOG_ERROR("Shot dropped: club %d gives no valid ball data\n", club);
        report.outcome = ShotOutcome::kRefusedNotFinite;
    }

    {
        std::lock_guard<std::mutex> lock(lastShotMutex);
        lastShot = LastShotInfo{club, ball, clubData, report.outcome};
    }
    if (OrvManagerCallback* ui = callback.load()) {
        ui->OnOrvShot();
    }
    if (report.outcome == ShotOutcome::kSent) {
        report.outcome = SendShotMessages(client, ball, clubData);
    }
    PublishShot(report);
}

ShotOutcome OrvManager::SendShotMessages(E6TruSimClient* client, const E6BallData& ball,
                                         const E6ClubData& clubData) {
    if (!client->SendTruSimMessage(E6_GetBallDataJson(ball)) ||
        !client->SendTruSimMessage(E6_GetClubDataJson(clubData))) {
        return ShotOutcome::kSendFailed;
    }
    const E6MiscData misc = E6_MakeMiscData(0.2, client->GetCurrentClub() == 1, 0);
    if (!client->SendTruSimMessage(E6_GetMiscDataJson(misc))) {
        return ShotOutcome::kSendFailed;
    }
    if (IsShowLog()) {
        LOG_INFO(
            "\n============= E6BallData ============\nballData.BackSpin: %f\nballData.BallSpeed: "
            "%f\nballData.LaunchAngle: %f\nballData.LaunchDirection: %f\nballData.SideSpin: "
            "%f\n=====================================\n\n",
            ball.BackSpin, ball.BallSpeed, ball.LaunchAngle, ball.LaunchDirection, ball.SideSpin);
        LOG_INFO(
            "\n============= E6ClubData ============\nclubData.ClubAngleFace: "
            "%f\nclubData.ClubAnglePath: %f\nclubData.ClubHeadSpeed: "
            "%f\n=====================================\n\n",
            clubData.ClubAngleFace, clubData.ClubAnglePath, clubData.ClubHeadSpeed);
    }
    // Marked before sending: the simulator's disarm may come back before the send returns.
    state->shotPending = true;
    if (!client->SendTruSimMessage(E6_GetSendShotJson())) {
        return ShotOutcome::kSendFailed;
    }
    SendSystemSetting(false);
    return ShotOutcome::kSent;
}

void OrvManager::PublishShot(const ShotReport& report) {
    if (ShotListener* listener = shotListener.load()) {
        listener->OnShotRecorded(report);
    }
}

void OrvManager::HandleLRSig(const OrvDataLRSig& record) {
    state->lrSigPending = true;
    state->lrSigCount += record.GetCount();
    if (!lrSigThreadActive.exchange(true)) {
        std::thread(&OrvManager::LRSigThreadFunc, this).detach();
    }
}

void OrvManager::OnConnect() {
    LOG_INFO("E6 Client OnConnect.\n");
}

bool OrvManager::ReportE6Connection(bool connected) {
    // The two notifications run on threads of their own, in either order: the
    // check and the report go together, so a link that went down after its
    // authentication is never shown as up.
    const std::lock_guard<std::mutex> lock(e6ReportMutex);
    if (connected && !IsSimulatorReady()) {
        return false;
    }
    if (OrvManagerCallback* ui = callback.load()) {
        ui->OnOrvE6ConnectionChanged(connected);
    }
    return true;
}

void OrvManager::OnDisconnect() {
    LOG_INFO("E6 Client OnDisconnect.\n");
    ReportE6Connection(false);
    SendSystemSetting(true);
}

void OrvManager::OnE6Auth(bool ok) {
    if (!ok) {
        LOG_ERROR("E6 auth failed.\n");
        return;
    }
    if (!ReportE6Connection(true)) {
        LOG_INFO("E6 link gone before its authentication was shown.\n");
        return;
    }
    const int club = state->clubCode.load();
    if (IsSensorConnected() && club != 0) {
        SendClubToSimulator(club);
    }
}

void OrvManager::OnE6PlayerData(E6PlayerData data) {
    E6TruSimClient* client = e6.load();
    if (!IsSimulatorReady() || client->GetArmState() != 0) {
        return;
    }
    ChangeClub(static_cast<int>(data.club), false);
    SendHands(data.Handed == "Right" ? 1 : 2);
    SendSystemSetting(true);
}

void OrvManager::OnE6EnvironmentData(E6EnvironmentData data) {
    const double d = data.DistanceToPin;
    // Short distances are spoken in feet (yards times three).
    const bool close = d <= 10.0;
    const std::string unit = GetStringRes(close ? 171 : 170);
    const int number = close ? static_cast<int>(d * 3) : static_cast<int>(d);
    const std::string format = GetStringRes(169);
    if (format.empty()) {
        return;
    }
    TTS_Speak(FormatDistanceText(format, unit, number));
}

void OrvManager::OnE6ArmState(int armState) {
    if (armState != 0) {
        SendSystemSetting(false);
        StopRecording(0);
        RecordingControl* rec = recording.load();
        if (rec != nullptr && rec->IsRecordingAvailable() && state->shotPending.load() &&
            state->recordingStarted.load()) {
            ShowRecordingFile();
        }
        state->shotPending = false;
        return;
    }
    E6TruSimClient* client = e6.load();
    if (client != nullptr && client->GetCurrentClub() != 0) {
        client->SendClubType(static_cast<int>(client->GetCurrentClub()));
    } else {
        SendSystemSetting(true);
    }
}

void OrvManager::OnE6Warning(std::string text) {
    LOG_ERROR("%s\n", text.c_str());
}

LastShotInfo OrvManager::GetLastShot() const {
    std::lock_guard<std::mutex> lock(lastShotMutex);
    return lastShot;
}

}  // namespace Orvane
