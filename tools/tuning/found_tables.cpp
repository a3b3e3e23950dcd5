#include "tools/tuning/found_tables.h"

namespace zavri::tools {
namespace {

struct Mode {
  const char* name;
  const char* switches;
};

Mode described(Merge mode) {
  switch (mode) {
    case Merge::kWhole:
      return {"whole", "switch_a = 1"};
    case Merge::kEdges:
      return {"edges", "switch_b = 1"};
    case Merge::kEdgesLuma:
      return {"edges-luma", "switch_c = 1"};
    case Merge::kChroma:
      break;
  }
  return {"chroma", "switch_a = switch_b = switch_c = 0"};
}

std::string c_table(const char* type, const TableName& name, const Report& list) {
  return std::string("static const ") + type + ' ' + name.c + "[] = " + c_initialiser(list) + ";\n";
}

}  // namespace

FoundTables threshold_tables(Merge mode, const Curve& chroma, const Curve& luma) {
  const auto [name, switches] = described(mode);
  FoundTables tables{{{"mode", name}, {kThreshTable.json, json_of(chroma)}},
                     std::string("/* For thresh_tune = 1, ") + switches + ". */\n" +
                         c_table("T_GainThreshPoint", kThreshTable, json_of(chroma))};
  if (mode == Merge::kChroma) return tables;
  tables.json[kThreshLumaTable.json] = json_of(luma);
  tables.c += c_table("T_GainThreshPoint", kThreshLumaTable, json_of(luma));
  return tables;
}

FoundTables weight_tables(const Chroma& chroma) {
  const Report weights = chroma.used_weights();
  return {{{"taps", chroma.taps}, {"threshold", chroma.threshold}, {kWeightTable.json, weights}},
          "/* For kernel_size = " + std::to_string(chroma.taps) +
              ", threshold = " + std::to_string(chroma.threshold) + ". */\n" +
              c_table("int8_t", kWeightTable, weights)};
}

}  // namespace zavri::tools
