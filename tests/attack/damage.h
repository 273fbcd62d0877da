// Makes damaged and forged variants of an exchange file, the same ones for the same seed on every
// machine.
#ifndef ZTB_TESTS_ATTACK_DAMAGE_H_
#define ZTB_TESTS_ATTACK_DAMAGE_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace attack {

struct Variant {
  const char* kind = "";
  std::string bytes;
};

class Damager {
 public:
  Damager(std::string base, std::uint64_t seed);

  // What a disk, a transfer or an interrupted copy does: flipped bits, noise, zeroed and repeated
  // ranges, a cut or longer end, blocks that changed places. Never equal to the base.
  Variant damaged();
  // What someone does who means it: fields of the tables, heads and bodies with other numbers, and
  // all checksums right.
  Variant forged();

 private:
  // Place and length of a frame (head and body).
  struct Frame {
    std::size_t at;
    std::size_t length;
  };

  // A number from 0 to below `end`, which is at least 1.
  std::size_t below(std::size_t end) { return static_cast<std::size_t>(random_() % end); }
  // A place in the file; half of them near the header, heads and tables, where little stands for
  // much.
  std::size_t place();
  std::string altered(const char*& kind);
  std::string withBlocksSwapped();

  std::string base_;
  std::mt19937_64 random_;
  std::vector<Frame> frames_;
};

}  // namespace attack

#endif  // ZTB_TESTS_ATTACK_DAMAGE_H_
