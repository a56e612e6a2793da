// Swing values a golfer of average skill produces with a given club.
#pragma once

#include <cstdint>
#include <random>

#include "ble/virtual/sensor_frames.h"

SwingValues PlausibleSwing(uint8_t club, std::mt19937& random);
// The motion reported with a swing step (2 address, 3 back swing).
MotionSample StepMotion(uint8_t step);
