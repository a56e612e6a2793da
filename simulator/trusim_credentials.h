// What this program proves itself with to the simulator: its developer
// identifier, and the key appended to the simulator's challenge before hashing.
#pragma once

inline constexpr char kE6DeveloperId[] = "7C1E54A2-9B3D-4F60-8A17-D2E9B0C46F58";
inline constexpr char kE6SecretKey[] = "Qm7Hd2KpVx9LtR4sNw8ZbC3jFy6GaE1uTo5XkWi0MnBvPr2D";
