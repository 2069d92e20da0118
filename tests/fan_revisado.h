// A small contribution file written by hand from its layouts, with no field finding: for
// the checker's tests and the editor's.
#pragma once

#include <string>
#include <vector>

namespace valdor::pruebas {

inline std::string b(std::size_t n) { return std::string(n, ' '); }
inline std::string z(std::size_t n) { return std::string(n, '0'); }

// One company of one worker, month 10 of 2026. Account 28 1234567: 281234567 mod 97 = 42.
// Worker 28 12345678: 2812345678 mod 97 = 40. DNI 87654321: mod 23 = 10, "X"; the
// company's 12345678: mod 23 = 14, "Z". The TC1: 1235.56 at 23.60 % is 291.59216, 291.59.
inline std::vector<std::string> ficheroCorrecto() {
  return {
      "ETITC220VIP2800000123ABCDEFGH202611150730F1511260FANN " + z(14) + b(2),
      "EMP011128123456742" "1   " "0000012345678Z" "  0111" "28123456742" "202610" "10" "L00" "00" "   E",
      "RZS01" "PANADERIA LOPEZ" + b(40) + b(10),
      "TRA" "281234567840" "1" + b(3) + "0000087654321X" "001" + b(25) + "000" + b(6),
      "AYN" "GARCIA" + b(14) + "LOPEZ" + b(15) + "ANA" + b(12) + "AGL  " + b(7),
      "DAT0" "0010" + b(6) + " " "030" "00" " " + b(2) + "0000" + b(2) + "01" + b(4) + "100" "000" "000" "000" + b(15) +
          "CONV001" " ",
      "EDLBA02000" "0123456" " " + z(26) + b(26),
      "EDLBA10000" "0000100" " " + z(26) + b(26),
      "EDLCD06" "030" "0000500" " 02" "20261001" + z(16) + b(26),
      "TCT001  " "000001" "000000" + b(28) + z(8) + b(14),
      "EDTBA02000" "00000123556" " " + z(19) + b(29),
      "EDTCD06000" + z(11) + " " + z(8) + "00000000500" " " + b(28),
      "EDTCA01000" "00000123556" "T" "023" "60000" "00000029159" + b(29),
      "EDTTT10000" + z(11) + " " + z(8) + "00000029159" " " + b(28),
      "EDTTT91000" + z(11) + " " + z(8) + "00000029159" " " + b(28),
      "ETFTC220VIP2800000123ABCDEFGH202611150730F1511260FANN 0000100000016   ",
  };
}

}  // namespace valdor::pruebas
