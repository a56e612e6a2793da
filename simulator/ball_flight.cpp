#include "simulator/ball_flight.h"

#include "common/debug_log.h"
#include "common/user_depends_data.h"

namespace {

// Plain comparisons are false for a NaN, so it passes through unchanged.
double Clamp(double v, double lo, double hi) {
    if (v < lo) {
        return lo;
    }
    if (v > hi) {
        return hi;
    }
    return v;
}

bool IsPutter(const __club_value_table_st& row) {
    return row.club == kPutterClub;
}

// Both above `limit`, or both below its negative.
bool BothBeyond(double a, double b, double limit) {
    return (a > limit && b > limit) || (a < -limit && b < -limit);
}

}  // namespace

double OrvCheckHeadSpeed(double v) {
    return Clamp(v, 0.0, 200.0);
}

double OrvCheckPathAngle(double v) {
    return Clamp(v, -15.0, 15.0);
}

double OrvGetBallSpeed(const __club_value_table_st& row, double headSpeed, double /*ratio*/) {
    double s;
    if (IsPutter(row)) {
        s = OrvGetPutterBallSpeed(headSpeed);
    } else {
        const double k =
            (row.club >= 1 && row.club <= 17) ? gUserDependsData.clubSpeedFactor[row.club] : 1.0;
        s = row.speedFactor * headSpeed * k;
    }
    if (gUserDependsData.clubType != 1) {
        LOG_INFO("ballSpeed <- swing stick\n");
        s *= 0.95;  // exactly 0.95, for the putter too
    }
    return Clamp(s, 0.0, 250.0);
}

// Piecewise linear in the stroke speed. The pieces meet only roughly
// (1.31 x 1.145 = 1.49995 against 1.5): the curve was fitted that way.
double OrvGetPutterBallSpeed(double v) {
    if (v < 1.31f) {
        return v * 1.145f;
    }
    if (v < 1.75f) {
        return (v - 1.31f) * 3.409f + 1.5;
    }
    if (v < 2.15f) {
        return (v - 1.75f) * 5.0 + 3.0;
    }
    if (v < 2.75f) {
        return (v - 2.15f) * 3.33f + 5.0;
    }
    if (v < 4.1f) {
        return (v - 2.75f) * 1.48f + 7.0;
    }
    if (v < 5.3f) {
        return (v - 4.1f) * 1.667f + 9.0;
    }
    if (v < 6.7f) {
        return (v - 5.3f) * 0.714f + 11.0;
    }
    if (v >= 6.7f) {
        return (v - 6.7f) * 1.21f + 12.0;
    }
    return 0.0;  // NaN
}

double OrvGetLaunchAngle(const __club_value_table_st& row, double headSpeed) {
    const double r = headSpeed / row.refHeadSpeed;
    const double launch = row.refLaunchAngle;
    double a;
    if (IsPutter(row)) {
        a = headSpeed >= row.refHeadSpeed ? r * launch * 0.5 : 0.0;
        if (a > launch) {
            a = launch;
        }
    } else if (headSpeed >= row.refHeadSpeed) {
        a = launch - r * launch * 0.1f;
    } else {
        // Deliberately discontinuous: about 1.1 x launch just below the
        // reference speed, 0.9 x launch at it.
        a = r * launch * 0.1f + launch;
    }
    a *= gUserDependsData.launchAngleScale;
    return Clamp(a, 0.0, 80.0);
}

double OrvGetLaunchDirection(const __club_value_table_st& row, int /*user*/, double /*headSpeed*/,
                             double path, double face) {
    const double d = IsPutter(row) ? path * 0.1f + face * 0.9f : path;
    return Clamp(d, -15.0, 15.0);
}

double OrvGetBackSpin(const __club_value_table_st& row, double headSpeed, double ratio,
                      double loftRatio) {
    double s = IsPutter(row) ? ratio / row.refLaunchAngle * row.refBackSpin
                             : headSpeed / row.refHeadSpeed * row.refBackSpin;
    const bool lofted = (row.club >= 4 && row.club <= 14) || row.club == 16;
    if (loftRatio != 0.0 && lofted) {
        double factor;
        if (loftRatio >= 1.0 && loftRatio < 1.05f) {
            factor = 0.95f;
        } else if (loftRatio >= 0.95f && loftRatio < 1.0) {
            factor = 0.9f;
        } else if (loftRatio >= 0.9f && loftRatio < 0.95f) {
            factor = 0.85f;
        } else if (loftRatio >= 0.85f && loftRatio < 0.9f) {
            factor = 0.8f;
        } else {
            factor = 0.7f;
        }
        s = s * factor * loftRatio;
    }
    return Clamp(s, -1000.0, 12000.0);
}

double OrvGetSideSpin(const __club_value_table_st& row, int /*user*/, double headSpeed, double face,
                      double path) {
    double m = 0.0;
    switch (gUserDependsData.swingLevel.load()) {
        case 1:
            m = 0.3f;
            break;
        case 2:
            m = 1.0;
            break;
        default:
            break;
    }
    const double q = static_cast<float>(gUserDependsData.sideSpinScale);
    const double r = static_cast<float>(headSpeed / row.refHeadSpeed);
    double b = 0.0;
    if (!IsPutter(row)) {
        // Path and face far off line on the same side damp the spin.
        double f = 1.0;
        if (BothBeyond(path, face, 10.0)) {
            f = 0.2f;
        } else if (BothBeyond(path, face, 5.0)) {
            f = 0.4f;
        }
        b = f * face * 1.5 * 200.0;
    }
    // A positive face angle gives negative side spin.
    return Clamp(r * b * q * m * -1.0, -6000.0, 6000.0);
}
