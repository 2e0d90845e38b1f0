// The built-in physical materials and appearance presets, in listing order, looked
// up by id; the finishes surfaces take light with, colours as "#rrggbb" text, and the
// sheet metal K-factor each material carries.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace cad {

// How a surface takes light. The numbers are what is stored; any other number
// reads as Matte.
enum class Finish { Polished = 0, Satin = 1, Glossy = 2, Matte = 3, Rubber = 4, Glass = 5 };

Finish finishFromNumber(int number);
// "polished", "satin", "glossy", "matte", "rubber", "glass".
std::string_view finishName(Finish finish);
// The finish a word names, ignoring case; none for any other word.
std::optional<Finish> parseFinish(std::string_view word);

// Red, green and blue from 0 to 1.
struct Color {
    double red = 0, green = 0, blue = 0;
};

// "#rrggbb": each channel clamped to 0..1, times 255, rounded (halves away from zero).
std::string colorText(const Color& color);

struct Material {
    std::string_view id;
    std::string_view name;
    std::string_view category; // "Metal", "Plastic", "Composite", "Wood", "Other"
    double densityKgM3;
    std::string_view appearance; // the id of the look it has unless painted
    // 0 below means not given.
    double youngsModulusGpa;
    double poissonRatio;
    double yieldStrengthMpa;
    double tensileStrengthMpa;
    double thermalConductivity; // W/(m·K)
    double thermalExpansion;    // 10^-6 per kelvin
};

struct AppearancePreset {
    std::string_view id;
    std::string_view name;
    std::string_view category; // "Metal", "Anodized", "Paint", "Plastic", "Clear", "Wood", "Other"
    Color color;
    Finish finish;
    double opacity; // 1 = opaque; only the clear ones are see-through
};

// Every material and every appearance preset, in the order they are listed.
std::span<const Material> materials();
std::span<const AppearancePreset> appearancePresets();

// By id, exactly or else ignoring case; null when there is none.
const Material* findMaterial(std::string_view id);
const AppearancePreset* findAppearancePreset(std::string_view id);

// The K-factor a sheet metal body of this material bends with when its rules give
// none; any other material, or none, bends with kDefaultKFactor.
inline constexpr double kDefaultKFactor = 0.44;
double kFactorForMaterial(std::string_view materialId);

} // namespace cad
