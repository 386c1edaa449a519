#include "growth/collisions.hpp"
#include "growth/shapes.hpp"

namespace zelk::bench {
namespace {

std::string hex(std::uint32_t number, std::size_t digits) {
  std::string text(digits, '0');
  for (std::size_t i = digits; i-- > 0; number >>= 4) text[i] = "0123456789ABCDEF"[number & 0xFU];
  return text;
}

template <typename PutRest>
std::string frames(Numbers n, const PutRest& put_rest) {
  return each(n, [&](std::string& t, std::size_t i) {
    put(t, "(", i / 1000, ".", 1000 + i % 1000, ") ");
    put_rest(t, i);
    t += '\n';
  });
}

}  // namespace

std::vector<Shape> log_shapes() {
  return {
      {"frames of one message",
       [](Numbers n) {
         return frames(n, [](std::string& t, std::size_t i) {
           put(t, "can0 001#", hex(static_cast<std::uint32_t>(i), 8));
         });
       }},
      {"identifiers",
       [](Numbers n) {
         return frames(n, [](std::string& t, std::size_t i) {
           put(t, "can0 ", hex(static_cast<std::uint32_t>(i), 8), "#00");
         });
       }},
      {"identifiers that collide",
       [](Numbers n) {
         return frames(n, [](std::string& t, std::size_t i) {
           put(t, "can0 ", hex(colliding_id(i), 8), "#00");
         });
       },
       kCollidingNames},
      {"interfaces",
       [](Numbers n) {
         return frames(n, [](std::string& t, std::size_t i) { put(t, "can", i, " 001#00"); });
       }},
      {"interfaces that collide",
       [](Numbers n) {
         return frames(n,
                       [](std::string& t, std::size_t i) { put(t, colliding_name(i), " 001#00"); });
       },
       kCollidingNames},
      {"values",
       [](Numbers n) {
         return frames(n, [](std::string& t, std::size_t i) {
           put(t, "can0 002#", hex(static_cast<std::uint32_t>(i * 2654435761U), 8));
         });
       }},
      {"times that run backwards",
       [](Numbers n) {
         std::string text;
         for (std::size_t i = n.count; i > 0; --i) put(text, "(", i, ".5) can0 001#00\n");
         return text;
       }},
      {"malformed lines",
       [](Numbers n) {
         return "(0.0) can0 001#00\n" +
                each(n, [](std::string& t, std::size_t i) { put(t, "no frame ", i, "\n"); });
       }},
      {"one long line",
       [](Numbers n) { return "(0.0) can0 001#00\n" + std::string(20 * n.count, '0') + "\n"; }},
      {"announcements of transported messages",
       [](Numbers n) {
         return frames(n, [](std::string& t, std::size_t i) {
           const auto number = static_cast<std::uint32_t>(i);
           put(t, "can", i / 65536, " 18EC", hex(number >> 8 & 0xFFU, 2), hex(number & 0xFFU, 2),
               "#10FF0600FFCAFE00");
         });
       }},
  };
}

}  // namespace zelk::bench
