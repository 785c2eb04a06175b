// SPDX-License-Identifier: MIT
// Made by tools/make-glyph-atlas from the DejaVu fonts; do not edit.
#include "linux/GlyphAtlas.h"

namespace vorla {

// clang-format off
static constexpr Glyph narrow6Glyphs[] = {{U'0', 0, 5}, {U'1', 5, 5}};
static constexpr char narrow6Coverage[] =
    ".3DD3.FF.."
    ".C55C..F.."
    ".E11E..F.."
    ".E11E..F.."
    ".C55C..F.."
    ".3DD3.FFF.";
constinit const GlyphSet narrow6{6, 10, narrow6Glyphs, narrow6Coverage};

static constexpr Glyph digits6Glyphs[] = {{U'0', 0, 6}, {U'1', 6, 6}, {U'2', 12, 6}, {U'3', 18, 6}, {U'4', 24, 6}, {U'5', 30, 6}, {U'6', 36, 6}, {U'7', 42, 6}, {U'8', 48, 6}, {U'9', 54, 6}};
static constexpr char digits6Coverage[] =
    ".2BEB2.FF....FFFD5.FFFD7..1EF..FFFFF.18DFF.FFFF..7DFD7.4CEB2"
    ".B616B..F.......4E....5E..98F..F.....981.....5B..E4.4E.D4.4B"
    ".E1.1E..F.......9F..FFF8.4D1F..FEEB3.ECFC4...B5..7FFF7.E4.4E"
    ".E1.1E..F.....2CFD...15E.D4.F.....5D.E4.4E..2E...D4.4D.4DFCE"
    ".B616B..F....6EFD3....5D.FFFFF....5D.B4.4D..88...E4.4E...189"
    ".2BEB2.FFF...FFFFF.FFEC4....F..FFFC4.2BEC4..E2...5DFD5.FFD91";
constinit const GlyphSet digits6{6, 60, digits6Glyphs, digits6Coverage};

static constexpr Glyph digits7Glyphs[] = {{U'0', 0, 7}, {U'1', 7, 7}, {U'2', 14, 7}, {U'3', 21, 7}, {U'4', 28, 7}, {U'5', 35, 7}, {U'6', 42, 7}, {U'7', 49, 7}, {U'8', 56, 7}, {U'9', 63, 7}, {U'?', 70, 6}};
static constexpr char digits7Coverage[] =
    ".19EE91.FFFF...FFFEB3.FFFEB4...7FF..FFFFF...5CEFF.FFFFFF.4CEEC4.2AED91.FFE7."
    ".8F55F8...FF......5FD....5FE..4DFF..FF.....6F81......3FB.EF33FE.BF44F8..2FE."
    ".DF11FD...FF......4FE....5FB.2E3FF..FFEEA2.DFCEC3....BF3.CF43FC.EF..FD..9F9."
    ".FF..FF...FF.....5FF6..FFFD3.C6.FF....17FB.FF44FC...5FB..2DFFD2.CF44FF..EF1."
    ".DF11FD...FF....6FF7....15FD.FFFFFF....1FE.DF..FE...DF3..CF33FC.3CFCFD......"
    ".8F55F8...FF...7FF7......5FD....FF.....7FB.8F44FB..7FA...EF43FE...18F6..FF.."
    ".19EE91.FFFFFF.FFFFFF.FFFEB3....FF..FFFE91.19EEA2.2EF2...4CEEC4.FFEC5...FF..";
constinit const GlyphSet digits7{7, 76, digits7Glyphs, digits7Coverage};

static constexpr Glyph digits8Glyphs[] = {{U'0', 0, 8}, {U'1', 8, 8}, {U'2', 16, 8}, {U'3', 24, 8}, {U'4', 32, 8}, {U'5', 40, 8}, {U'6', 48, 8}, {U'7', 56, 8}, {U'8', 64, 8}, {U'9', 72, 8}};
static constexpr char digits8Coverage[] =
    "..9EE9...FFFF....FFFEA2..4BEEB4....1DFF..FFFFF....7EFF...FFFFFF..4CEEC4..2AEE8.."
    ".6F66F6....FF.......5FC..A3.5FE....A9FF..FF......5F91.......5FC..EF33FE..BF44F6."
    ".CF11FC....FF.......2FD.....5FB...8B.FF..FF......CF2........CF5..CF43FC..EF..FC."
    ".EF..FE....FF......1CF5...FFFD2..5D1.FF..FFEEA2..EFCEC3....4FD...1DFFD1..CF44FE."
    ".EF..FE....FF......BF5.....17FB..E3..FF....17FB..EF44FC....BF5...BF44FB..3CFCFE."
    ".CF11FC....FF.....AF4.......1FE..FFFFFFF....1FE..CF..FE...3FD....EF..FE.....2FC."
    ".7F66F7....FF....8F6.....A317FB......FF.....7FB..7F44FB...9F6....CF44FC....1AF5."
    "..9EE9...FFFFFF..FFFFFF..5CED91......FF..FFFE91...8EEA2..1FD.....2BEEB2...FFE7..";
constinit const GlyphSet digits8{8, 80, digits8Glyphs, digits8Coverage};

static constexpr Glyph digits9Glyphs[] = {{U'0', 0, 9}, {U'1', 9, 9}, {U'2', 18, 9}, {U'3', 27, 9}, {U'4', 36, 9}, {U'5', 45, 9}, {U'6', 54, 9}, {U'7', 63, 9}, {U'8', 72, 9}, {U'9', 81, 9}};
static constexpr char digits9Coverage[] =
    "..5DFD5....FFFF...39DFEC6...4AEED91.....6DFF..FFFFFF....3BED5...FFFFFFF..2AEFEA2...7DFC5.."
    ".4F919F3.....FF...C73129F9..B4118FB....5D2FF..FF.......3FB229.......5FD..BF616FB..8F717F3."
    ".BF2.2FA.....FF........1FE......1FE...4E3.FF..FF.......AF3..........CF6..EF1.1FE..DF1.1FB."
    ".DF..1FD.....FF........4FD.....17FA..3E3..FF..FFEEC7...EFCEE91.....4FD...AF616FA..EF1.1FD."
    ".FF...FF.....FF.......2DF4....FFFD2..E4...FF..B412AF8..FF717F9.....BF6...1CFFFC1..9F717FF."
    ".DF..1FD.....FF......6EF6......17FB..FFFFFFFF.....1FE..DF1.1FE....3FD....BF616FB..19EECFE."
    ".BF2.2FA.....FF....1BFC3........1FF.......FF......1FE..BF1.1FD....AF6....EF1.1FE......3FA."
    ".4F919F4.....FF...5EE6......B4118FB.......FF..B511AF8..4F717F8...2FD.....BF616FB...922BF3."
    "..5DFD5....FFFFFF.FFFFFFFF..4BEED81.......FF..4BEEC6....5DFD7....9F6.....2AEFEA2...5DFB3..";
constinit const GlyphSet digits9{9, 90, digits9Glyphs, digits9Coverage};

static constexpr Glyph digits10Glyphs[] = {{U'0', 0, 10}, {U'1', 10, 10}, {U'2', 20, 10}, {U'3', 30, 10}, {U'4', 40, 10}, {U'5', 50, 10}, {U'6', 60, 10}, {U'7', 70, 10}, {U'8', 80, 10}, {U'9', 90, 10}, {U'?', 100, 8}};
static constexpr char digits10Coverage[] =
    "..3BEEB3....4BFF.....3AEED7....39DFEC81.....5DFF...FFFFFFF....19DEC5...FFFFFFFF..18DEED81...4BEEA2...4BEEA2."
    ".2EC22CE2...B4FF.....C5219F8...C62.29FC....3E3FF...FF........1CD313A........4FE..CF8118FC..5FA11AE2..B415FB."
    ".9F4..4F9.....FF.........1FD........1FE...1D5.FF...FF........7F4............BF7..FF1..1FE..CF2..2F9.....2FE."
    ".DF1..1FD.....FF.........2FE.......28FA...B8..FF...FFEFDA3...CFBEEC5.......3FE1..AF8118FA..FF....FD....1BFA."
    ".FF....FF.....FF.........AFC.....FFFFD1..8B...FF...B5214DF5..EFA11AF6......BF8...1CFFFFC1..DF2..2FF...1CFB1."
    ".FF....FF.....FF........9FF5.......3BFA..D1...FF........3FD..FF2..2FD.....3FE1...9F9119F9..7FA11AFE...BF9..."
    ".DF1..1FD.....FF.......9FE4.........2FE..FFFFFFFF.......1FF..DF....FF.....AF8....EF1..1FE...5CEEBFC...FF1..."
    ".9F4..4F9.....FF......8FF4..........2FE.......FF........3FD..9F2..2FC....2FF1....EF1..1FE.......4F7........."
    ".2EC22CE2.....FF.....8FF4......C52.2BF7.......FF...C6213CF5..2EA11AF5....AF9.....9F9119F9...A314DC1...FF...."
    "..3BEEB3....FFFFFF...FFFFFFF...3ADFEB5........FF...3ADFDA3....3BEEB4....2FF2......7CEEC7....5CFD91....FF....";
constinit const GlyphSet digits10{10, 108, digits10Glyphs, digits10Coverage};

static constexpr Glyph digits12Glyphs[] = {{U'0', 0, 11}, {U'1', 11, 11}, {U'2', 22, 11}, {U'3', 33, 11}, {U'4', 44, 11}, {U'5', 55, 11}, {U'6', 66, 11}, {U'7', 77, 11}, {U'8', 88, 11}, {U'9', 99, 11}, {U'?', 110, 9}};
static constexpr char digits12Coverage[] =
    "..18DFD81....27CFF.....39DFEB4....38CEFEB7.......AFFF...FFFFFFFF.....5BEEB4...FFFFFFFFF...7CEFEC7....2AEFD7....4ADED7.."
    "..BFFFFFB....FFFFF.....FFFFFFF5...FFFFFFFFA.....5FEFF...FFFFFFFF....7FFFFFF...FFFFFFFFF..AFFFFFFFA..2EFFFFFB...FFFFFF8."
    ".5FD413DF5...D82FF.....C7312AFD...C731.27FE....1DF6FF...FF.........3FE6114B.........8FA..FF61.16FF..AFA2.2AF5..C62.5FE."
    ".BF5...5FA......FF..........1FF........27FC....9FC.FF...FF.........9F6.............1EF3..DF61.16FC..EF1...1FB......2FE."
    ".DF1...1FD......FF..........2FE.....FFFFFC2...3FF3.FF...FFDFEC81...DF8CEEA3........7FB...3DFFFFFD3..FF1...1FE.....1BF8."
    ".FF.....FF......FF.........1CF9.....FFFFFF5...CF8..FF...FFFFFFFD2..EFFFFFFE3.......DF4...2DFFFFFD2..BFA2.2AFF....1CFA.."
    ".FF.....FF......FF........2CFD1.......14CFC..7FD...FF...C63114CFA..FFA2.2AFB......5FD....BFB2.2BFB..3FFFFFFFE....BF9..."
    ".DF1...2FD......FF.......3EFD2..........2FE..FF4...FF.........2FE..EF1...1FF......CF6....EF1...1FE...3AEFD8FD....FF1..."
    ".BF5...5FA......FF......5EFB1...........2FE..FFFFFFFFFF.......2FE..BF1...1FE.....4FE.....FF1...1FF........6F9.........."
    ".5FD414DF5......FF.....6FF9.......C73113CFB..FFFFFFFFFF.C73113CFB..5FA2.2AFA.....BF7.....CFB2.2BFC...B4116EF3....FF...."
    "..BFFFFFB....FFFFFFFF..FFFFFFFF...FFFFFFFE3........FF...FFFFFFFE2...BFFFFFE2....3FE1.....5FFFFFFF5...FFFFFF7.....FF...."
    "..18DFD81....FFFFFFFF..FFFFFFFF...39DFED92.........FF...39CEFD92....18DFEA2.....9F9.......4BEFEB4....4BEEB4......FF....";
constinit const GlyphSet digits12{12, 119, digits12Glyphs, digits12Coverage};

static constexpr Glyph digits13Glyphs[] = {{U'0', 0, 13}, {U'1', 13, 13}, {U'2', 26, 13}, {U'3', 39, 13}, {U'4', 52, 13}, {U'5', 65, 13}, {U'6', 78, 13}, {U'7', 91, 13}, {U'8', 104, 13}, {U'9', 117, 13}};
static constexpr char digits13Coverage[] =
    "...3AEFEA3.....27CFFF......27BEFEC81....38CEFEDA4........2EFFF.....FFFFFFFF......29DFDA4....FFFFFFFFFF....4ADFFDA4.....18DFEB5...."
    "..6FFFFFFF5....FFFFFF......FFFFFFFFD2...FFFFFFFFF7.......CFFFF.....FFFFFFFF.....3EFFFFFF....FFFFFFFFFF...7FFFFFFFF6...1CFFFFFF7..."
    ".2FFD3.3DFE2...D82FFF......FE7214CFFA...C731.29FFE......8FDFFF.....FFF.........1DFE6114B..........9FFB...EFF8118FFD...8FFA11AFF3.."
    ".8FF6...6FF8......FFF......A1....3FFE.........1FFE.....4FF3FFF.....FFF.........7FF6..............1FFF4...EFF1..1FFE...DFF2..2FF9.."
    ".CFF2...2FFC......FFF............1FFE.......139FF8....1EF7.FFF.....FFFEFD92....BFF8CEEA2.........8FFC....9FF8118FF9...FFF....FFC.."
    ".EFF....1FFE......FFF............5FFC.....FFFFFE6.....BFB..FFF.....FFFFFFFE2...EFFFFFFFE2.......1EFF5.....8EFFFFE8....EFF2..2FFE.."
    ".FFF.....FFF......FFF...........2EFF8.....FFFFFFD2...6FE2..FFF.....B5214DFF9...FFFA11AFFA.......7FFD......9FFFFFF9....AFFA11AFFF.."
    ".EFF1...1FFE......FFF..........5EFFE1.......14CFFA...FF5...FFF..........3FFE...EFF2..2FFE.......EFF6.....8FF9119FF8...2EFFFFFFFE.."
    ".CFF2...2FFC......FFF.........9FFFE4..........2FFE...FFFFFFFFFFF........1FFF...DFF....FFF......6FFD......EFF1..1FFE....2AEFD8FFB.."
    ".8FF6...6FF8......FFF.......2CFFFD3...........2FFE...FFFFFFFFFFF........4FFD...9FF2..2FFD......DFF7......FFF1..1FFF.........6FF7.."
    ".2FFD3.3DFE2......FFF......6EFFFA1......C73113CFFA.........FFF....C73114DFF8...3FFA11AFF8.....5FFE1......CFF9119FFC....B4116EFD1.."
    "..6FFFFFFF5....FFFFFFFFF...FFFFFFFFFF...FFFFFFFFD2.........FFF....FFFFFFFFC1....7FFFFFFC1.....CFF8.......4FFFFFFFF4....FFFFFFE3..."
    "...3AEFEA3.....FFFFFFFFF...FFFFFFFFFF...38CEFEB71..........FFF....38CDFEB6.......5BEFD81.....4FFF1........3ADFFDA3.....4ADFD92....";
constinit const GlyphSet digits13{13, 130, digits13Glyphs, digits13Coverage};

static constexpr Glyph digits16Glyphs[] = {{U'0', 0, 15}, {U'1', 15, 15}, {U'2', 30, 15}, {U'3', 45, 15}, {U'4', 60, 15}, {U'5', 75, 15}, {U'6', 90, 15}, {U'7', 105, 15}, {U'8', 120, 15}, {U'9', 135, 15}, {U'?', 150, 13}};
static constexpr char digits16Coverage[] =
    "....5BEFEB5......269DFFFF.......26ACEFEC93.....27BDFFDB61.........1DFFFF......FFFFFFFFFF......16BEFEC83...FFFFFFFFFFFF.....5ADEFEDA5......17CEFDA4......38BDFEC92.."
    "...AFFFFFFFA.....FFFFFFFF.......FFFFFFFFFF7....FFFFFFFFFD2........AFFFFF......FFFFFFFFFF.....3DFFFFFFFF...FFFFFFFFFFFF...1BFFFFFFFFFB1...4EFFFFFFF9.....FFFFFFFFE4."
    "..9FFE414EFF8....D962FFFF.......FFD6116EFFF4...C73114DFFFA.......6FFFFFF......FFF...........3FFFC42136C..........7FFFD...9FFFC313CFFF9..2EFFD414DFF8....C73118FFFC."
    ".2FFF8...8FFF2.......FFFF.......F91....7FFFB.........3FFFE......3FFFFFFF......FFF...........DFFC.................EFFF7...EFFF3...3FFFE..9FFF5...5FFF2........1FFFF."
    ".8FFF4...4FFF8.......FFFF.......8......2FFFE.........1FFFE.....1DFFBFFFF......FFF..........5FFF5................6FFFE1...EFFF1...1FFFE..DFFF2...2FFF8........7FFFD."
    ".BFFF2...2FFFB.......FFFF..............1FFFF.........4FFFB.....9FFC1FFFF......FFF..........AFFF7BEFEA3..........DFFF8....BFFF3...3FFFB..FFFF.....FFFC.......7FFFF5."
    ".EFFF1...1FFFE.......FFFF..............4FFFE.......14DFFD2....5FFC1.FFFF......FFFDFEDA3....DFFFFFFFFFF7........4FFFF2....3EFFC313CFFE3..EFFF2...2FFFE......8FFFF6.."
    ".FFFF.....FFFF.......FFFF..............BFFFB.....FFFFFF81....2EFD1..FFFF......FFFFFFFFF8...EFFFD414DFFF4.......BFFFA......2AFFFFFFFA2...BFFF5...5FFFF.....6FFFE4..."
    ".FFFF.....FFFF.......FFFF.............7FFFF7.....FFFFFFF8....CFD2...FFFF......C63116EFFF5..FFFF5...5FFFB......3FFFF3......4BFFFFFFFB4...4FFFD414DFFFE.....DFFF5...."
    ".EFFF1...1FFFE.......FFFF............9FFFFE1.......15DFFF7...FE2....FFFF............6FFFC..EFFF2...2FFFE......AFFFB......4FFFC313CFFF4...7FFFFFFFFFFD.....FFFF....."
    ".BFFF2...2FFFB.......FFFF..........1BFFFFF4..........4FFFD...FFFFFFFFFFFFF..........1FFFE..CFFF.....FFFF.....2FFFF4......CFFF3...3FFFC....4AEFEB7FFFA.............."
    ".8FFF4...4FFF8.......FFFF.........2DFFFFE4...........1FFFF...FFFFFFFFFFFFF..........1FFFE..8FFF2...2FFFD.....8FFFD.......EFFF1...1FFFE..........5FFF5.............."
    ".2FFF8...8FFF2.......FFFF........4EFFFFD3............4FFFD..........FFFF............6FFFB..3FFF5...5FFF9....1EFFF6.......DFFF3...3FFFD..........CFFD......FFFF....."
    "..9FFE4.4EFF9........FFFF.......6FFFFFC1......D842.15EFFF7..........FFFF.....D842127EFFF4...9FFD414DFFE2....7FFFE........8FFFC313CFFF8...C63114CFFF3......FFFF....."
    "...AFFFFFFFA.....FFFFFFFFFFFF...FFFFFFFFFFFF..FFFFFFFFFF9...........FFFF.....FFFFFFFFFF6.....AFFFFFFFE4.....DFFF7........1BFFFFFFFFFB1...FFFFFFFFD3.......FFFF....."
    "....5BEFEB5......FFFFFFFFFFFF...FFFFFFFFFFFF..27BDEFEC83............FFFF.....26ADEFEC82.......4AEFEC71.....6FFFE1..........5ADEFEDA5.....38CEFEB6.........FFFF.....";
constinit const GlyphSet digits16{16, 163, digits16Glyphs, digits16Coverage};

static constexpr Glyph digits19Glyphs[] = {{U'0', 0, 18}, {U'1', 18, 18}, {U'2', 36, 18}, {U'3', 54, 18}, {U'4', 72, 18}, {U'5', 90, 18}, {U'6', 108, 18}, {U'7', 126, 18}, {U'8', 144, 18}, {U'9', 162, 18}};
static constexpr char digits19Coverage[] =
    ".....5ADEEDA4........269DFFFFF........258BDEFEDA5........26ACDFEDB82............BFFFFF.......FFFFFFFFFFFF........16ADEEDB72.....FFFFFFFFFFFFFF.....17BDEFEDB71........39CEFDB6......"
    "...1BFFFFFFFFB1......FFFFFFFFF........FFFFFFFFFFFC2......FFFFFFFFFFF7..........7FFFFFF.......FFFFFFFFFFFF.......5EFFFFFFFFF.....FFFFFFFFFFFFFF....5EFFFFFFFFFE6......8FFFFFFFFC2...."
    "..1DFFFFFFFFFFD1.....FFFFFFFFF........FFFFFFFFFFFFE1.....FFFFFFFFFFFF6........3FFFFFFF.......FFFFFFFFFFFF......7FFFFFFFFFFF.....FFFFFFFFFFFFFF...4FFFFFFFFFFFFF4....9FFFFFFFFFFD1..."
    "..9FFFF8117FFFF9.....D962FFFFF........FFB62.28FFFFF8.....D842.15DFFFFC........CFFFFFFF.......FFFF.............4FFFFE62.137C.............CFFFFA...BFFFFC313CFFFFB...4FFFFD414DFFFA..."
    ".2FFFFB....BFFFF2........FFFFF........B3......7FFFFD............4FFFFE.......8FFEFFFFF.......FFFF.............DFFFE2...................4FFFFF3...EFFFF3...3FFFFE...AFFFF5...5FFFF2.."
    ".7FFFF5....5FFFF7........FFFFF................2FFFFF............1FFFFD......4FFF6FFFFF.......FFFF............5FFFF6....................BFFFFC....EFFFF1...1FFFFE...DFFFF2...2FFFF8.."
    ".AFFFF3....3FFFFA........FFFFF................1FFFFE............4FFFFA.....1DFFB.FFFFF.......FFFFCEFDA5......9FFFF49DFEC71............2FFFFF5....BFFFF3...3FFFFB...FFFFF.....FFFFB.."
    ".DFFFF1....1FFFFD........FFFFF................5FFFFD..........26EFFFD2.....9FFE2.FFFFF.......FFFFFFFFFFC1....CFFFFFFFFFFFD2...........9FFFFD.....3FFFFC313CFFFE3...EFFFF2...2FFFFD.."
    ".EFFFF......FFFFE........FFFFF...............1DFFFFB.......FFFFFFFE91.....5FFF5..FFFFF.......FFFFFFFFFFFC....EFFFFFFFFFFFFD1.........1EFFFF7......3CFFFFFFFFFC3....CFFFF5...5FFFFE.."
    ".FFFFF......FFFFF........FFFFF..............1CFFFFF7.......FFFFFFFC6.....1EFFA...FFFFF.......C742139FFFFF6...FFFFFD414DFFFF7.........7FFFFE1.......19FFFFFFF81.....7FFFFD414DFFFFF.."
    ".EFFFF......FFFFE........FFFFF.............1CFFFFFE1.......FFFFFFFFFB....AFFD1...FFFFF..............9FFFFB...EFFFF5...5FFFFC.........EFFFF8.......5EFFFFFFFFFE5....1DFFFFFFFFFFFFE.."
    ".DFFFF1....1FFFFD........FFFFF............2DFFFFFF5..........127EFFFF7...FFF4....FFFFF..............2FFFFE...DFFFF2...2FFFFE........6FFFFF2......5FFFFC313CFFFF5....2DFFFFFFFFFFFC.."
    ".AFFFF3....3FFFFA........FFFFF...........3EFFFFFF5..............5FFFFC...FFFFFFFFFFFFFFFF...........1FFFFF...BFFFF.....FFFFF........CFFFFA.......CFFFF3...3FFFFC.....17CEFD94FFFF9.."
    ".7FFFF5....6FFFF7........FFFFF..........4EFFFFFE4...............1FFFFE...FFFFFFFFFFFFFFFF...........3FFFFE...8FFFF2...2FFFFD.......4FFFFF3.......FFFFF1...1FFFFF............7FFFF5.."
    ".2FFFFB....BFFFF2........FFFFF.........5FFFFFFE3................4FFFFE...FFFFFFFFFFFFFFFF...........9FFFFB...3FFFF5...5FFFFA.......BFFFFB........EFFFF3...3FFFFE...........2EFFFD..."
    "..9FFFF8118FFFF9.........FFFFF........7FFFFFFD2.........D9421127EFFFF9...........FFFFF......D9531139FFFFF5....BFFFD414DFFFF3......3FFFFF5........BFFFFC313CFFFFB....C731.26EFFFF4..."
    "..1DFFFFFFFFFFD1.....FFFFFFFFFFFFF....FFFFFFFFFFFFFF....FFFFFFFFFFFFE2...........FFFFF......FFFFFFFFFFFFA.....2EFFFFFFFFFF9.......9FFFFD.........4FFFFFFFFFFFFF4....FFFFFFFFFFF7...."
    "...1BFFFFFFFFB1......FFFFFFFFFFFFF....FFFFFFFFFFFFFF....FFFFFFFFFFFC2............FFFFF......FFFFFFFFFFF9.......2DFFFFFFFF8.......1FFFFF6..........5EFFFFFFFFFE5.....FFFFFFFFFE5....."
    ".....5ADEEDA5........FFFFFFFFFFFFF....FFFFFFFFFFFFFF....26ACDFFEC94..............FFFFF......269CDEFEC82..........6BEFEC93........8FFFFE1...........17BDEFEDB71......27BDEEDA61......";
constinit const GlyphSet digits19{19, 180, digits19Glyphs, digits19Coverage};

static constexpr Glyph narrow20Glyphs[] = {{U'0', 0, 19}, {U'1', 19, 19}};
static constexpr char narrow20Coverage[] =
    ".....28CEFEC82........147ADFFFFF......"
    "....8FFFFFFFFF8.......FFFFFFFFFF......"
    "...AFFFFFFFFFFF9......FFFFFFFFFF......"
    "..6FFFFFFFFFFFFF6.....FFFFFFFFFF......"
    "..EFFFF92.29FFFFE.....EB851FFFFF......"
    ".5FFFFB.....BFFFF5.........FFFFF......"
    ".9FFFF5.....5FFFF9.........FFFFF......"
    ".CFFFF2.....2FFFFC.........FFFFF......"
    ".EFFFF1.....1FFFFE.........FFFFF......"
    ".FFFFF.......FFFFF.........FFFFF......"
    ".FFFFF.......FFFFF.........FFFFF......"
    ".EFFFF1.....1FFFFE.........FFFFF......"
    ".CFFFF2.....3FFFFC.........FFFFF......"
    ".9FFFF5.....6FFFF9.........FFFFF......"
    ".5FFFFB.....CFFFF5.........FFFFF......"
    "..EFFFF92.29FFFFE..........FFFFF......"
    "..6FFFFFFFFFFFFF6.....FFFFFFFFFFFFFFF."
    "...AFFFFFFFFFFFA......FFFFFFFFFFFFFFF."
    "....8FFFFFFFFF8.......FFFFFFFFFFFFFFF."
    ".....28CEFEC82........FFFFFFFFFFFFFFF.";
constinit const GlyphSet narrow20{20, 38, narrow20Glyphs, narrow20Coverage};

static constexpr Glyph digits24Glyphs[] = {{U'0', 0, 23}, {U'1', 23, 23}, {U'2', 46, 23}, {U'3', 69, 23}, {U'4', 92, 23}, {U'5', 115, 23}, {U'6', 138, 23}, {U'7', 161, 23}, {U'8', 184, 23}, {U'9', 207, 23}, {U'?', 230, 19}};
static constexpr char digits24Coverage[] =
    ".......27BDEEDB72.........1469BEFFFFFF...........1479CDEFFEC94..........FFFFFFFFEDA72..................7FFFFFFF........FFFFFFFFFFFFFFF............38CDEEDC962......FFFFFFFFFFFFFFFFFF.........27BDEFEDB72............16ADEFDB72..........258BCDFEEB83...."
    "......8EFFFFFFFFE8........FFFFFFFFFFFF...........FFFFFFFFFFFFFD4........FFFFFFFFFFFFF91...............3FFFFFFFF........FFFFFFFFFFFFFFF..........2BFFFFFFFFFFF......FFFFFFFFFFFFFFFFFF........9FFFFFFFFFFF8..........7EFFFFFFFFF91........FFFFFFFFFFFFA1.."
    "....1BFFFFFFFFFFFFB.......FFFFFFFFFFFF...........FFFFFFFFFFFFFFF6.......FFFFFFFFFFFFFFB..............1DFFFFFFFF........FFFFFFFFFFFFFFF.........4EFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFF.......BFFFFFFFFFFFFFA........AFFFFFFFFFFFFC1.......FFFFFFFFFFFFFC.."
    "....AFFFFFFFFFFFFFFA......FFFFFFFFFFFF...........FFFFFFFFFFFFFFFF2......FFFFFFFFFFFFFFF6.............9FFFFFFFFF........FFFFFFFFFFFFFFF........4FFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFE......6FFFFFFFFFFFFFFF5......8FFFFFFFFFFFFFFB.......FFFFFFFFFFFFFF7."
    "...5FFFFFD5115DFFFFF4.....EB9641FFFFFF...........FFE952.14CFFFFFF9......D9532.139FFFFFFC............5FFFFFFFFFF........FFFFFFFFFFFFFFF.......1DFFFFFC52.1358D......FFFFFFFFFFFFFFFFF8......BFFFFFD414DFFFFFB.....2FFFFFF6116FFFFFF6......FFC63114DFFFFFC."
    "...CFFFFF2....2FFFFFC...........FFFFFF...........C5........AFFFFFD...............7FFFFFE...........2EFFFDFFFFFF........FFFFF.................8FFFFFA.........................7FFFFFF2......EFFFFF4...4FFFFFE.....8FFFFF8....8FFFFFD......B3......3FFFFFE."
    "..3FFFFFA......AFFFFF3..........FFFFFF.....................2FFFFFF...............1FFFFFE...........BFFFF3FFFFFF........FFFFF................1EFFFFD..........................EFFFFF9.......FFFFFF1...1FFFFFF.....CFFFFF3....3FFFFFF4.............1FFFFFE."
    "..7FFFFF6......6FFFFF7..........FFFFFF......................FFFFFE...............1FFFFFC..........7FFFF7.FFFFFF........FFFFFBEFEDB72........5FFFFF7.........................6FFFFFF3.......DFFFFF1...1FFFFFD.....EFFFFF1....1FFFFFF8.............5FFFFFC."
    "..AFFFFF3......3FFFFFA..........FFFFFF.....................3FFFFFD...............6FFFFF8.........3FFFFB..FFFFFF........FFFFFFFFFFFFF8.......9FFFFF34ADFEDA5.................DFFFFFB........AFFFFF4...4FFFFFA.....FFFFFF1....1FFFFFFB............2EFFFFF7."
    "..DFFFFF1......2FFFFFD..........FFFFFF.....................9FFFFFB............138FFFFFD1........1DFFFE2..FFFFFF........FFFFFFFFFFFFFFB......CFFFFFBFFFFFFFFC2..............5FFFFFF4........3FFFFFD414DFFFFF3.....EFFFFF3....3FFFFFFD...........3EFFFFFC.."
    "..EFFFFF1......1FFFFFE..........FFFFFF....................6FFFFFF8.........FFFFFFFFFFC2.........9FFFF5...FFFFFF........FFFFFFFFFFFFFFF9.....DFFFFFFFFFFFFFFFE2.............CFFFFFC..........5FFFFFFFFFFFFE4......BFFFFF8....8FFFFFFE..........5EFFFFFD2.."
    "..FFFFFF........FFFFFF..........FFFFFF...................7FFFFFFF4.........FFFFFFFFFA2.........5FFFF9....FFFFFF........D96321.27EFFFFFF3....EFFFFFFFFFFFFFFFFD............3FFFFFF5...........2AFFFFFFFFF92.......6FFFFFF6116FFFFFFFF.........5FFFFFFC1..."
    "..FFFFFF........FFFFFF..........FFFFFF..................8FFFFFFFB..........FFFFFFFFFFF9.......2EFFFD1....FFFFFF.................2EFFFFF8....FFFFFFFF6116FFFFFF6...........AFFFFFD...........18EFFFFFFFFFE81.......DFFFFFFFFFFFFFFFFE........3FFFFFFB1...."
    "..EFFFFF1......1FFFFFE..........FFFFFF.................AFFFFFFFE2..........FFFFFFFFFFFFB......BFFFF3.....FFFFFF..................6FFFFFC....EFFFFFF8....8FFFFFB..........2FFFFFF7..........4EFFFFFFFFFFFFFE4......3EFFFFFFFFFFFFFFFD........AFFFFFB......"
    "..DFFFFF2......2FFFFFD..........FFFFFF...............1CFFFFFFFE3..............125BFFFFFF6.....FFFF7......FFFFFF..................2FFFFFE....DFFFFFF3....3FFFFFE..........9FFFFFE1.........3FFFFFE72.27EFFFFF3......2CFFFFFFFFBFFFFFC........EFFFFF2......"
    "..AFFFFF3......3FFFFFA..........FFFFFF..............2DFFFFFFFE3...................8FFFFFC.....FFFFFFFFFFFFFFFFFFFF................FFFFFF....BFFFFFF1....1FFFFFF.........1EFFFFF8..........AFFFFF6.....6FFFFFA........5ADEFDA43FFFFF9........FFFFFF......."
    "..7FFFFF6......6FFFFF7..........FFFFFF.............3EFFFFFFFD2....................1FFFFFE.....FFFFFFFFFFFFFFFFFFFF...............2FFFFFE....8FFFFFF1....1FFFFFE.........7FFFFFF2..........EFFFFF1.....1FFFFFE................7FFFFF5....................."
    "..3FFFFFA......AFFFFF3..........FFFFFF............5EFFFFFFFB1.....................1FFFFFE.....FFFFFFFFFFFFFFFFFFFF...............6FFFFFC....4FFFFFF3....3FFFFFC.........EFFFFFA...........FFFFFF1.....1FFFFFF...............1DFFFFE1....................."
    "...CFFFFF2....2FFFFFC...........FFFFFF...........7FFFFFFFFA............B4.........8FFFFFD.....FFFFFFFFFFFFFFFFFFFF....C5........2EFFFFF8.....DFFFFF8....8FFFFF8........6FFFFFF3...........DFFFFF6.....6FFFFFD...............AFFFFF8.........FFFFFF......."
    "...5FFFFFD5115DFFFFF4...........FFFFFF...........FFFFFFFFFFFFFFFFF.....FFD842..25BFFFFFF8................FFFFFF.......FFE9521.27EFFFFFE2.....6FFFFFF6116FFFFFF2........DFFFFFB............AFFFFFE72.27EFFFFFA......D9521.26CFFFFFD1.........FFFFFF......."
    "....AFFFFFFFFFFFFFFA.......FFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFF.....FFFFFFFFFFFFFFFFE2................FFFFFF.......FFFFFFFFFFFFFFFF7.......BFFFFFFFFFFFFFF8........5FFFFFF4............4FFFFFFFFFFFFFFFFF4......FFFFFFFFFFFFFF4..........FFFFFF......."
    "....1BFFFFFFFFFFFFB........FFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFF.....FFFFFFFFFFFFFFFE4.................FFFFFF.......FFFFFFFFFFFFFFF8........1CFFFFFFFFFFFFA.........BFFFFFC..............7FFFFFFFFFFFFFFF7.......FFFFFFFFFFFFE4...........FFFFFF......."
    "......8EFFFFFFFFE8.........FFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFF.....FFFFFFFFFFFFFFA2..................FFFFFF.......FFFFFFFFFFFFFD5..........19FFFFFFFFFE7.........3FFFFFF6...............5DFFFFFFFFFFFD5........FFFFFFFFFFFA2............FFFFFF......."
    ".......27BDEEDB72..........FFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFF.....258BCDEFEECA62....................FFFFFF.......147ACDEFFEC95..............28CDFEDA61..........AFFFFFD..................59CEEFEEC95..........26ACDEFDC83..............FFFFFF.......";
constinit const GlyphSet digits24{24, 249, digits24Glyphs, digits24Coverage};

static constexpr Glyph digits26Glyphs[] = {{U'0', 0, 25}, {U'1', 25, 25}, {U'2', 50, 25}, {U'3', 75, 25}, {U'4', 100, 25}, {U'5', 125, 25}, {U'6', 150, 25}, {U'7', 175, 25}, {U'8', 200, 25}, {U'9', 225, 25}};
static constexpr char digits26Coverage[] =
    "........37BDEEDB73...........1469BEFFFFFF...............37ACEFFEC961..........147ACDEFFEDB84....................CFFFFFFF.........FFFFFFFFFFFFFFFFF.............38BDEFEB83........FFFFFFFFFFFFFFFFFFFF..........49BDEFEDB94..............27BDEFDC84........"
    "......2AFFFFFFFFFFA2.........FFFFFFFFFFFF............38EFFFFFFFFFFFE7.........FFFFFFFFFFFFFFD5.................8FFFFFFFF.........FFFFFFFFFFFFFFFFF...........4CFFFFFFFFFFC4......FFFFFFFFFFFFFFFFFFFF........5DFFFFFFFFFFFD5..........1AFFFFFFFFFFB3......"
    ".....4EFFFFFFFFFFFFE3........FFFFFFFFFFFF............FFFFFFFFFFFFFFFFC1.......FFFFFFFFFFFFFFFF8...............4FFFFFFFFF.........FFFFFFFFFFFFFFFFF..........8FFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFF.......7FFFFFFFFFFFFFFF7........3DFFFFFFFFFFFFF5....."
    "....3EFFFFFFFFFFFFFFE3.......FFFFFFFFFFFF............FFFFFFFFFFFFFFFFFB.......FFFFFFFFFFFFFFFFF4.............1DFFFFFFFFF.........FFFFFFFFFFFFFFFFF.........AFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFF......3FFFFFFFFFFFFFFFFF3......2EFFFFFFFFFFFFFFF4...."
    "...1DFFFFFFFFFFFFFFFFD.......FFFFFFFFFFFF............FFFFFFFFFFFFFFFFFF5......FFFFFFFFFFFFFFFFFB.............9FFFFFFFFFF.........FFFFFFFFFFFFFFFFF........7FFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFA......AFFFFFFFFFFFFFFFFFA......BFFFFFFFFFFFFFFFFE1..."
    "...7FFFFFF931139FFFFFF7......EB9641FFFFFF............FFFFB631.27EFFFFFFA......DA74321.149FFFFFFE............4FFFF8FFFFFF.........FFFFF...................2FFFFFFE841.136CFF..................6FFFFFF3......DFFFFFE62.26EFFFFFD.....4FFFFFFA3113AFFFFFF8..."
    "...DFFFFF6......6FFFFFD............FFFFFF............FF92.......1DFFFFFD.................5FFFFFE...........1DFFFD1FFFFFF.........FFFFF...................9FFFFFA1........3B..................DFFFFFB.......FFFFFF4.....4FFFFFF.....9FFFFFB......AFFFFFE..."
    "..4FFFFFC........CFFFFF4...........FFFFFF............B2..........5FFFFFF.................1FFFFFD...........AFFFF3.FFFFFF.........FFFFF..................1FFFFFC.............................5FFFFFF4.......EFFFFF1.....1FFFFFE.....CFFFFF3......3FFFFFF5.."
    "..7FFFFF7........7FFFFF7...........FFFFFF........................1FFFFFE.................5FFFFFA..........5FFFF8..FFFFFF.........FFFFFADEFEDA72.........5FFFFF517BEFEDA5....................CFFFFFC........BFFFFF4.....4FFFFFB.....EFFFFF1......1FFFFFF8.."
    "..BFFFFF4........4FFFFFB...........FFFFFF........................1FFFFFD..............148FFFFFF3.........1EFFFC...FFFFFF.........FFFFFFFFFFFFFFB2.......9FFFFF7EFFFFFFFFD5.................4FFFFFF5........6FFFFFE62.26EFFFFF5.....FFFFFF1......1FFFFFFB.."
    "..DFFFFF2........2FFFFFD...........FFFFFF........................5FFFFFB..........FFFFFFFFFFFF5..........AFFFF3...FFFFFF.........FFFFFFFFFFFFFFFE5......CFFFFFFFFFFFFFFFFF8................BFFFFFD..........BFFFFFFFFFFFFFFFA......EFFFFF3......3FFFFFFD.."
    "..EFFFFF1........1FFFFFE...........FFFFFF.......................1DFFFFF8..........FFFFFFFFFFA2..........6FFFF7....FFFFFF.........FFFFFFFFFFFFFFFFF4.....DFFFFFFFFFFFFFFFFFF6..............3FFFFFF6...........8FFFFFFFFFFFFE8.......BFFFFFB......AFFFFFFE.."
    "..FFFFFF..........FFFFFF...........FFFFFF......................1BFFFFFF4..........FFFFFFFFFFFA2........2EFFFB.....FFFFFF.........FFFFFFFFFFFFFFFFFD.....EFFFFFFFFFFFFFFFFFFE1.............AFFFFFE............18FFFFFFFFFFF81.......7FFFFFFB3113BFFFFFFFF.."
    "..FFFFFF..........FFFFFF...........FFFFFF.....................2CFFFFFFC...........FFFFFFFFFFFFE4.......BFFFE2.....FFFFFF.........FFE9521.149FFFFFFF6....FFFFFFFFB3113AFFFFFF7............2FFFFFF7...........7EFFFFFFFFFFFFFE7......1EFFFFFFFFFFFFFFFFFFE.."
    "..EFFFFF1........1FFFFFE...........FFFFFF....................4EFFFFFFF4...........FFFFFFFFFFFFFE1.....7FFFF6......FFFFFF.........C5.........3EFFFFFA....EFFFFFFA......BFFFFFB............9FFFFFE1..........8FFFFFFFFFFFFFFFFF8......6FFFFFFFFFFFFFFFFFFD.."
    "..DFFFFF2........2FFFFFD...........FFFFFF...................8FFFFFFFF8................137CFFFFFF8.....EFFFB.......FFFFFF.....................5FFFFFD....DFFFFFF3......3FFFFFE...........2FFFFFF8..........4FFFFFF941.24AFFFFFF4......8FFFFFFFFFFFFFFFFFC.."
    "..BFFFFF4........4FFFFFB...........FFFFFF.................2CFFFFFFFFA.....................9FFFFFC.....FFFFFFFFFFFFFFFFFFFFFF.................1FFFFFE....BFFFFFF1......1FFFFFF...........8FFFFFF2..........AFFFFF7.......7FFFFFA.......5EFFFFFFFFE7FFFFF9.."
    "..8FFFFF7........7FFFFF7...........FFFFFF................5EFFFFFFFFB......................1FFFFFE.....FFFFFFFFFFFFFFFFFFFFFF.................1FFFFFE....8FFFFFF1......1FFFFFE..........1EFFFFF9...........EFFFFF1.......1FFFFFE.........6ADEFEB616FFFFF5.."
    "..4FFFFFC........CFFFFF4...........FFFFFF...............9FFFFFFFFF7.......................1FFFFFF.....FFFFFFFFFFFFFFFFFFFFFF.................5FFFFFD....5FFFFFF3......3FFFFFC..........7FFFFFF2...........FFFFFF1.......1FFFFFF.................1DFFFFF1.."
    "...DFFFFF6......6FFFFFD............FFFFFF.............2CFFFFFFFFD3...........C5...........9FFFFFD.....FFFFFFFFFFFFFFFFFFFFFF....C61.........3EFFFFFA....1EFFFFFB......BFFFFF9..........EFFFFFA............EFFFFF7.......7FFFFFE......B3........1BFFFFF9..."
    "...7FFFFFF931139FFFFFF7............FFFFFF............6EFFFFFFFFA1............FFEA631..136CFFFFFFA.....FFFFFFFFFFFFFFFFFFFFFF....FFFB7421.149FFFFFFF5.....9FFFFFFA31.3AFFFFFF4.........6FFFFFF3............BFFFFFF931.149FFFFFFB......FFC631.148EFFFFFF2..."
    "...1DFFFFFFFFFFFFFFFFD.......FFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFF.....FFFFFFFFFFFFFFFFFFF4.................FFFFFF........FFFFFFFFFFFFFFFFFFC......1EFFFFFFFFFFFFFFFFB..........DFFFFFB.............6FFFFFFFFFFFFFFFFFFF6......FFFFFFFFFFFFFFFF6...."
    "....3FFFFFFFFFFFFFFFE3.......FFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFF.....FFFFFFFFFFFFFFFFFF9..................FFFFFF........FFFFFFFFFFFFFFFFFE3.......5FFFFFFFFFFFFFFFE2.........5FFFFFF4..............DFFFFFFFFFFFFFFFFFD.......FFFFFFFFFFFFFFFA....."
    ".....4EFFFFFFFFFFFFE4........FFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFF.....FFFFFFFFFFFFFFFFF9...................FFFFFF........FFFFFFFFFFFFFFFFE3.........5FFFFFFFFFFFFFD3..........CFFFFFC...............2DFFFFFFFFFFFFFFFD2.......FFFFFFFFFFFFFF8......"
    "......2AFFFFFFFFFFA2.........FFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFF.....3AFFFFFFFFFFFFFC4....................FFFFFF........39EFFFFFFFFFFFE91...........3CFFFFFFFFFFA1..........4FFFFFF5................19FFFFFFFFFFFFF91........4CFFFFFFFFFFC4......."
    "........37BDEEDB73...........FFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFF.......159BDEFEDC962......................FFFFFF...........48ADEFFEC961...............48CDFEDB72............BFFFFFD...................169CEEFEEC961............38CEFEDB73.........";
constinit const GlyphSet digits26{26, 250, digits26Glyphs, digits26Coverage};

static constexpr Glyph title30Glyphs[] = {{U'0', 0, 28}, {U'1', 28, 28}, {U'2', 56, 28}, {U'3', 84, 28}, {U'4', 112, 28}, {U'5', 140, 28}, {U'6', 168, 28}, {U'7', 196, 28}, {U'8', 224, 28}, {U'9', 252, 28}, {U'?', 280, 23}, {U'%', 303, 40}, {U'·', 343, 15}, {U' ', 358, 14}, {U'h', 372, 28}, {U'W', 400, 44}, {U'V', 444, 31}, {U'o', 475, 27}, {U'r', 502, 20}, {U'l', 522, 14}, {U'a', 536, 27}};
static constexpr char title30Coverage[] =
    ".........38BDEEDB83...........................................258BDEFEECA61.............1469BCDEFEEDB84...........................................................................38BDEFEDA62..........................................159CDEFEDC951................38BDEFDC84......................................6ADEEDA6.............5FFFE2........................................FFFFFFF...............................................................................................................................................FFFFFFF..............................."
    ".......3CFFFFFFFFFFC3...........1357ACEFFFFFFF.............38DFFFFFFFFFFFFFA2...........FFFFFFFFFFFFFFFE71...................AFFFFFFFF..........FFFFFFFFFFFFFFFFFFF.............4CFFFFFFFFFFFB4........FFFFFFFFFFFFFFFFFFFFFF........18EFFFFFFFFFFFE81............4CFFFFFFFFFFC4..............48BDEFEDA72.........3DFFFFFFFFD3..........1DFFF7.........................................FFFFFFF...................DFFFFFF6.........BFFFFFFC.........5FFFFFFD.CFFFFFFD...............DFFFFFFC..................................................FFFFFFF..............................."
    "......7FFFFFFFFFFFFFF7..........FFFFFFFFFFFFFF.............FFFFFFFFFFFFFFFFFE5..........FFFFFFFFFFFFFFFFFC2.................6FFFFFFFFF..........FFFFFFFFFFFFFFFFFFF............9FFFFFFFFFFFFFFF........FFFFFFFFFFFFFFFFFFFFFF.......1CFFFFFFFFFFFFFFFC1..........7FFFFFFFFFFFFFF8..........39EFFFFFFFFFFFA2......3EFFFFFFFFFFE3.........8FFFC..........................................FFFFFFF...................AFFFFFF9.........EFFFFFFF1........9FFFFFFA.7FFFFFFF3.............3FFFFFFF6..................................................FFFFFFF..............................."
    ".....7FFFFFFFFFFFFFFFF7.........FFFFFFFFFFFFFF.............FFFFFFFFFFFFFFFFFFF4.........FFFFFFFFFFFFFFFFFFC................2EFFFFFFFFF..........FFFFFFFFFFFFFFFFFFF..........1BFFFFFFFFFFFFFFFF........FFFFFFFFFFFFFFFFFFFFFF.......CFFFFFFFFFFFFFFFFFC.........8FFFFFFFFFFFFFFFF8.........FFFFFFFFFFFFFFFE3.....DFFFF8118FFFFD........2FFFF3..........................................FFFFFFF...................6FFFFFFD........3FFFFFFFF4........CFFFFFF6.1FFFFFFF9.............9FFFFFFF1..................................................FFFFFFF..............................."
    "....4FFFFFFFFFFFFFFFFFF4........FFFFFFFFFFFFFF.............FFFFFFFFFFFFFFFFFFFD1........FFFFFFFFFFFFFFFFFFF6...............BFFFFFFFFFF..........FFFFFFFFFFFFFFFFFFF..........AFFFFFFFFFFFFFFFFF........FFFFFFFFFFFFFFFFFFFFFF......5FFFFFFFFFFFFFFFFFFF5.......5FFFFFFFFFFFFFFFFFF5........FFFFFFFFFFFFFFFFD1...6FFFFA....AFFFF6.......BFFF9...........................................FFFFFFF...................2FFFFFFF2.......7FFFFFFFF8.......1FFFFFFF2..AFFFFFFE.............EFFFFFFA...................................................FFFFFFF..............................."
    "....DFFFFFFE6116EFFFFFFD........FFFFFFFFFFFFFF.............FFFFB631.38EFFFFFFFF6........FFD8521.25CFFFFFFFFB..............7FFFFFFFFFFF..........FFFFFFFFFFFFFFFFFFF.........6FFFFFFFD731.148DFF........FFFFFFFFFFFFFFFFFFFFFD......BFFFFFFF82128FFFFFFFB.......DFFFFFFC4114CFFFFFFE1.......FFFFFFFFFFFFFFFFF7...AFFFF4....5FFFFA......5FFFE1...........................................FFFFFFF....................EFFFFFF5.......BFFFFFFFFB.......4FFFFFFE...5FFFFFFF5...........5FFFFFFF4...................................................FFFFFFF..............................."
    "...6FFFFFFF5....5FFFFFFF6.......ECA8531FFFFFFF.............FF92.......3EFFFFFFFB........B4.........AFFFFFFFE.............3FFFFFFFFFFFF..........FFFFFFFFFFFFFFFFFFF........1EFFFFFF8.........4B........FFFFFFFFFFFFFFFFFFFFF6......DFFFFFF8.....8FFFFFFD......5FFFFFFD1....1DFFFFFF7.......FFFE942.28FFFFFFFB...DFFFF1....2FFFFD.....1EFFF6............................................FFFFFFF....................AFFFFFF9.......EFFFFFFFFF.......8FFFFFFA....EFFFFFFA...........AFFFFFFE....................................................FFFFFFF..............................."
    "...CFFFFFFD......DFFFFFFC..............FFFFFFF.............B2..........7FFFFFFFD...................2FFFFFFFF.............CFFFFAFFFFFFF..........FFFFFF.....................7FFFFFF8.................................3FFFFFFE1......FFFFFFF2.....2FFFFFFF......9FFFFFF6......6FFFFFFD.......FE71......6FFFFFFE...EFFFF......FFFFE.....9FFFC.............................................FFFFFFF...17CEFEB71........7FFFFFFC......3FFFFFFFFFF4......CFFFFFF7....8FFFFFFF1.........1FFFFFFF8..........159CDEFDC951....................39CEEC....FFFFFFF...........37ADEFFEDB84........"
    "..2FFFFFFF8......8FFFFFFF2.............FFFFFFF.........................2FFFFFFFF....................FFFFFFFE............8FFFFE1FFFFFFF..........FFFFFF.....................DFFFFFD1.................................AFFFFFF7.......EFFFFFF1.....1FFFFFFE......DFFFFFF2......2FFFFFFF3......A1........1FFFFFFF...EFFFF......FFFFE....3FFFF3.............................................FFFFFFF..7EFFFFFFFD3.......3FFFFFFF1.....6FFFFDDFFFF7.....1FFFFFFF3....3FFFFFFF6.........6FFFFFFF3........18EFFFFFFFFFFE81........FFFFFFF.1AFFFFFF....FFFFFFF........39EFFFFFFFFFFFFD5......"
    "..6FFFFFFF5......5FFFFFFF6.............FFFFFFF..........................FFFFFFFE...................2FFFFFFFA...........4FFFFF5.FFFFFFF..........FFFFFF....................3FFFFFF8.................................2FFFFFFE1.......CFFFFFF2.....2FFFFFFC......EFFFFFF........FFFFFFF7................1FFFFFFD...DFFFF2....2FFFFD....CFFF8..............................................FFFFFFF.9FFFFFFFFFFE3.......EFFFFFF5.....AFFFF99FFFFB.....4FFFFFFE......CFFFFFFC.........CFFFFFFC........3DFFFFFFFFFFFFFFD3.......FFFFFFF1CFFFFFFF....FFFFFFF........FFFFFFFFFFFFFFFFF9....."
    "..9FFFFFFF3......3FFFFFFF9.............FFFFFFF.........................2FFFFFFFC...................AFFFFFFF4..........1DFFFF9..FFFFFFF..........FFFFFF9CEFEDB84...........7FFFFFF4.6ADEEDB72.......................9FFFFFF9........7FFFFFF8.....8FFFFFF7......FFFFFFF........FFFFFFFA................7FFFFFFA...AFFFF5....5FFFFA...6FFFD1..............................................FFFFFFF9FFFFFFFFFFFFC.......BFFFFFF8.....DFFFF66FFFFE.....7FFFFFFB......6FFFFFFF2.......2FFFFFFF6.......3EFFFFFFFFFFFFFFFFF3......FFFFFFFAFFFFFFFF....FFFFFFF........FFFFFFFFFFFFFFFFFF7...."
    "..CFFFFFFF2......2FFFFFFFC.............FFFFFFF.........................6FFFFFFF7................25BFFFFFFF9...........AFFFFD1..FFFFFFF..........FFFFFFFFFFFFFFFD6.........AFFFFFF6EFFFFFFFFFA1....................1EFFFFFF2........1EFFFFFF82128FFFFFFE1......EFFFFFF2......2FFFFFFFC...............2EFFFFFF5...6FFFFA....AFFFF5..1EFFF5...............................................FFFFFFFFFFFFFFFFFFFFF4......7FFFFFFC....2FFFFF22FFFFF3....BFFFFFF7......1FFFFFFF8.......8FFFFFFF1......1EFFFFFFFFFFFFFFFFFFE2.....FFFFFFFFFFFFFFFF....FFFFFFF........FFFFFFFFFFFFFFFFFFE1..."
    "..DFFFFFFF1......1FFFFFFFD.............FFFFFFF........................1DFFFFFFE1............FFFFFFFFFFFFF7...........5FFFFF4...FFFFFFF..........FFFFFFFFFFFFFFFFFA1.......CFFFFFFFFFFFFFFFFFFD3...................8FFFFFFA..........3EFFFFFFFFFFFFFFFE3.......CFFFFFF5......6FFFFFFFD..............3EFFFFFFB.....DFFFF8118FFFFD...AFFFB....................FFFFFFF.....................FFFFFFFFF93.28FFFFFFF9......3FFFFFFF1...6FFFFE..EFFFF6....EFFFFFF4.......AFFFFFFD.......DFFFFFFA.......9FFFFFFFA3113AFFFFFFF9.....FFFFFFFFFD51.25B....FFFFFFF........FFD8521..249FFFFFFF6..."
    "..EFFFFFFF.......1FFFFFFFE.............FFFFFFF........................AFFFFFFF6.............FFFFFFFFFFE72...........1EFFFF8....FFFFFFF..........FFFFFFFFFFFFFFFFFFB.......DFFFFFFFFFFFFFFFFFFFD1.................1EFFFFFF3...........2BFFFFFFFFFFFFFB2........8FFFFFFC.....1DFFFFFFFE.............5EFFFFFFD1.....3EFFFFFFFFFFE3..4FFFF2....................FFFFFFF.....................FFFFFFFF8.....9FFFFFFC.......FFFFFFF4...9FFFFA..AFFFFA...3FFFFFFF1.......4FFFFFFF4.....4FFFFFFF4......2FFFFFFF7......7FFFFFFF2....FFFFFFFFB...........FFFFFFF........B4..........6FFFFFFA..."
    "..FFFFFFFF........FFFFFFFF.............FFFFFFF.......................9FFFFFFF8..............FFFFFFFFFFFE82..........BFFFFC.....FFFFFFF..........FFFFFFFFFFFFFFFFFFF8......EFFFFFFFFFFFFFFFFFFFFA.................7FFFFFFB.............2AFFFFFFFFFFFA2.........3FFFFFFFC4114CFFFFFFFFF............7FFFFFFFD2.......3DFFFFFFFFD3...CFFF7....5ADEEDA6.........FFFFFFF.....................FFFFFFFD......4FFFFFFE.......BFFFFFF8...DFFFF6..6FFFFE...7FFFFFFC.........DFFFFFF9.....9FFFFFFD.......6FFFFFFC........CFFFFFF6....FFFFFFFE1...........FFFFFFF.....................FFFFFFD..."
    "..FFFFFFFF........FFFFFFFF.............FFFFFFF......................AFFFFFFF9...............FFFFFFFFFFFFFE5........6FFFFF3.....FFFFFFF..........FFE9521.25BFFFFFFFFE2.....FFFFFFFFFC4114CFFFFFFF3................DFFFFFF4...........1AFFFFFFFFFFFFFFFA1........BFFFFFFFFFFFFFFFFFFFFE...........7FFFFFFFB1..........6ADEEDA6....7FFFD...3DFFFFFFFFD3.......FFFFFFF.....................FFFFFFF7......2FFFFFFF.......8FFFFFFB..1FFFFF3..3FFFFF2..BFFFFFF8.........8FFFFFFE1....EFFFFFF8.......AFFFFFF6........6FFFFFFA....FFFFFFF9............FFFFFFF..........169BDEFFFFFFFFFFFE..."
    "..EFFFFFFF.......1FFFFFFFE.............FFFFFFF....................1BFFFFFFF8................FFFFFFFFFFFFFFF6......2EFFFF7......FFFFFFF..........C5.........7FFFFFFFF7.....EFFFFFFFC......CFFFFFF8...............6FFFFFFC...........2DFFFFFFFFFFFFFFFFFD2.......2EFFFFFFFFFFFFFFFFFFFD..........4FFFFFFF9.......................2EFFF4..3EFFFFFFFFFFE3......FFFFFFF.....................FFFFFFF3......1FFFFFFF.......4FFFFFFF..5FFFFE....EFFFF6..EFFFFFF4.........2FFFFFFF5...5FFFFFFF2.......DFFFFFF3........3FFFFFFD....FFFFFFF4............FFFFFFF........19FFFFFFFFFFFFFFFFFF..."
    "..DFFFFFFF1......1FFFFFFFD.............FFFFFFF...................1CFFFFFFF7....................1249EFFFFFFFE2.....CFFFFB.......FFFFFFF......................9FFFFFFFB.....DFFFFFFF5......6FFFFFFC...............DFFFFFF5...........DFFFFFFC51.15CFFFFFFC........3DFFFFFFFFFFFFFFFFFFC..........BFFFFFFA........................AFFFA...DFFFF8118FFFFD......FFFFFFF.....................FFFFFFF1.......FFFFFFF.......1FFFFFFF4.8FFFFB....AFFFF9.3FFFFFFF1..........CFFFFFFB...AFFFFFFC........EFFFFFF1........1FFFFFFE....FFFFFFF2............FFFFFFF.......3DFFFFFFFFFFFFFFFFFFF..."
    "..CFFFFFFF2......2FFFFFFFC.............FFFFFFF..................2DFFFFFFE5.........................2DFFFFFFF8.....FFFFE2.......FFFFFFF......................3FFFFFFFD.....CFFFFFFF2......2FFFFFFE..............5FFFFFFD...........6FFFFFFC.......BFFFFFF6........1AFFFFFFFFFD6FFFFFFA..........EFFFFFF2.......................4FFFE2..6FFFFA....AFFFF6.....FFFFFFF.....................FFFFFFF........FFFFFFF........CFFFFFF7.CFFFF7....7FFFFD.6FFFFFFC...........6FFFFFFF1.1FFFFFFF6........FFFFFFF..........FFFFFFF....FFFFFFF1............FFFFFFF.......DFFFFFFFFFFFFFFFFFFFF..."
    "..9FFFFFFF3......3FFFFFFF9.............FFFFFFF.................3DFFFFFFE3...........................5FFFFFFFC.....FFFFFFFFFFFFFFFFFFFFFFFF..................1FFFFFFFE.....AFFFFFFF........FFFFFFF..............CFFFFFF7...........BFFFFFF4.......4FFFFFFB..........28BDFEDA5.4FFFFFF7..........FFFFFFF.......................1DFFF7...AFFFF4....5FFFFA.....FFFFFFF.....................FFFFFFF........FFFFFFF........8FFFFFFB1FFFFF3....3FFFFF2AFFFFFF9...........1EFFFFFF7.6FFFFFFE1........EFFFFFF1........1FFFFFFE....FFFFFFF.............FFFFFFF......6FFFFFFF931....FFFFFFF..."
    "..6FFFFFFF6......6FFFFFFF6.............FFFFFFF................3EFFFFFFD2............................1FFFFFFFE.....FFFFFFFFFFFFFFFFFFFFFFFF..................1FFFFFFFE.....7FFFFFFF........FFFFFFE.............4FFFFFFE1...........EFFFFFF1.......1FFFFFFE....................8FFFFFF3........................................8FFFC....DFFFF1....2FFFFD.................................FFFFFFF........FFFFFFF........5FFFFFFE4FFFFF......EFFFF5EFFFFFF5............AFFFFFFC.CFFFFFFA.........DFFFFFF3........3FFFFFFD....FFFFFFF.............FFFFFFF......BFFFFFF7......1FFFFFFF..."
    "..2FFFFFFF8......8FFFFFFF2.............FFFFFFF...............4EFFFFFFC1.............................1FFFFFFFE.....FFFFFFFFFFFFFFFFFFFFFFFF..................3FFFFFFFD.....3FFFFFFF2......2FFFFFFC.............BFFFFFF8............FFFFFFF1.......1FFFFFFF...................1EFFFFFD........................................2FFFF3....FFFFF......FFFFE.................................FFFFFFF........FFFFFFF........1FFFFFFFBFFFFB......BFFFFBFFFFFFF2............4FFFFFFF5FFFFFFF4.........AFFFFFF6........6FFFFFFA....FFFFFFF.............FFFFFFF......EFFFFFF1......4FFFFFFF..."
    "...CFFFFFFD......DFFFFFFC..............FFFFFFF..............6FFFFFFFB1..............................5FFFFFFFD.....FFFFFFFFFFFFFFFFFFFFFFFF.....B2...........9FFFFFFFB......DFFFFFF5......6FFFFFF9............3FFFFFFF1............EFFFFFF4.......4FFFFFFE...................9FFFFFF7........................................BFFF9.....EFFFF......FFFFE.................................FFFFFFF........FFFFFFF.........CFFFFFFFFFFF8......7FFFFFFFFFFFD..............DFFFFFFEFFFFFFD..........6FFFFFFC........CFFFFFF6....FFFFFFF.............FFFFFFF......FFFFFFF1......AFFFFFFF..."
    "...6FFFFFFF5....5FFFFFFF6..............FFFFFFF.............7FFFFFFF9...................C5..........2DFFFFFFFA.....FFFFFFFFFFFFFFFFFFFFFFFF.....FF92........6FFFFFFFF6......7FFFFFFC......CFFFFFF5............AFFFFFF9.............CFFFFFFB.......BFFFFFFC.......B4.........8FFFFFFE1...........FFFFFFF.....................5FFFE1.....DFFFF2....2FFFFD.................................FFFFFFF........FFFFFFF.........9FFFFFFFFFFF4......4FFFFFFFFFFF9..............8FFFFFFFFFFFFF8..........2FFFFFFF7......7FFFFFFF2....FFFFFFF.............FFFFFFF......EFFFFFF6.....5FFFFFFFF..."
    "....DFFFFFFE6116EFFFFFFD...............FFFFFFF.............FFFFFFFFFFFFFFFFFFFFF.......FFEA631..148EFFFFFFFF5..................FFFFFFF.........FFFFB731.15BFFFFFFFFE1......1EFFFFFFC4114CFFFFFFD............2FFFFFFF2.............7FFFFFFFC51.15CFFFFFFF7.......FFD741.137DFFFFFFF6............FFFFFFF....................1EFFF6......AFFFF5....4FFFFA.................................FFFFFFF........FFFFFFF.........5FFFFFFFFFFF1.......FFFFFFFFFFF6..............2FFFFFFFFFFFFF2...........9FFFFFFFA31139FFFFFFF9.....FFFFFFF.............FFFFFFF......CFFFFFFE72.29FFFFFFFFF..."
    "....4FFFFFFFFFFFFFFFFFF4........FFFFFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFFF.......FFFFFFFFFFFFFFFFFFFFC...................FFFFFFF.........FFFFFFFFFFFFFFFFFFFF6........5FFFFFFFFFFFFFFFFFF5............9FFFFFFA..............2EFFFFFFFFFFFFFFFFFFFE2.......FFFFFFFFFFFFFFFFFA.............FFFFFFF....................9FFFC.......5FFFFA....AFFFF5.................................FFFFFFF........FFFFFFF.........2FFFFFFFFFFC........BFFFFFFFFFF2...............BFFFFFFFFFFFB............2EFFFFFFFFFFFFFFFFFFE2.....FFFFFFF.............FFFFFFF......7FFFFFFFFFFFFFFFFFFFFF..."
    ".....7FFFFFFFFFFFFFFFF7.........FFFFFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFFF.......FFFFFFFFFFFFFFFFFFFE2...................FFFFFFF.........FFFFFFFFFFFFFFFFFFF9..........9FFFFFFFFFFFFFFFF8............2FFFFFFF3...............6FFFFFFFFFFFFFFFFFFF6........FFFFFFFFFFFFFFFFB1.............FFFFFFF...................3FFFF3........DFFFF8118FFFFD..................................FFFFFFF........FFFFFFF..........DFFFFFFFFF8........8FFFFFFFFFE................6FFFFFFFFFFF6.............3FFFFFFFFFFFFFFFFFF3......FFFFFFF.............FFFFFFF......1EFFFFFFFFFFFF9FFFFFFF..."
    "......7FFFFFFFFFFFFFF7..........FFFFFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFFF.......FFFFFFFFFFFFFFFFFFC2....................FFFFFFF.........FFFFFFFFFFFFFFFFFF7............9FFFFFFFFFFFFFF7.............8FFFFFFC.................7FFFFFFFFFFFFFFFFF7.........FFFFFFFFFFFFFFF9...............FFFFFFF...................CFFF8.........3EFFFFFFFFFFE3..................................FFFFFFF........FFFFFFF..........9FFFFFFFFF5........4FFFFFFFFFA................1EFFFFFFFFFE1..............3DFFFFFFFFFFFFFFD3.......FFFFFFF.............FFFFFFF.......4FFFFFFFFFFFB.FFFFFFF..."
    ".......3CFFFFFFFFFFC3...........FFFFFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFFF.......FFFFFFFFFFFFFFFFC6......................FFFFFFF.........38DFFFFFFFFFFFFFA3..............4DFFFFFFFFFFC4.............1EFFFFFF5..................3BFFFFFFFFFFFFFB3..........4BFFFFFFFFFFFC4................FFFFFFF..................6FFFD1..........3DFFFFFFFFD3...................................FFFFFFF........FFFFFFF..........6FFFFFFFFF1........1FFFFFFFFF7.................9FFFFFFFFF9................18EFFFFFFFFFFE81........FFFFFFF.............FFFFFFF........4EFFFFFFFF9..FFFFFFF..."
    ".........38CDEEDC83.............FFFFFFFFFFFFFFFFFFFFF......FFFFFFFFFFFFFFFFFFFFF.......1469BCDEFFEDC972........................FFFFFFF............369BDEFEDC962..................49CDFEDB83...............7FFFFFFD.....................27ACEEFEECA72..............27ADEFEDB83..................FFFFFFF.................1EFFF5.............5ADEEDA5.....................................FFFFFFF........FFFFFFF..........2FFFFFFFFD..........CFFFFFFFF3.................4FFFFFFFFF4..................159CDFFEC961..........FFFFFFF.............FFFFFFF.........17BEFEC83...FFFFFFF...";
constinit const GlyphSet title30{30, 563, title30Glyphs, title30Coverage};

// clang-format on

} // namespace vorla
