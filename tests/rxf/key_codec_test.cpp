#include "providers/rxf/key_codec.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <vector>

#include "providers/rxf/plane_codec.h"

namespace rxffile {
namespace {

using Rows = std::vector<std::vector<int>>;

Bytes encodedKeys(const Rows& rows, int dim, std::uint32_t labelCount) {
  RecordBlock block;
  block.shape(dim, 1);
  const std::array<double, kMaxSlots> values{};
  for (const std::vector<int>& row : rows) {
    const RecordBlock::Comparison comparison = block.stage(row.data(), labelCount);
    EXPECT_TRUE(comparison.inLabels);
    block.add(values.data(), comparison.firstChanged);
  }
  Compressor compressor;
  KeyEncoder encoder;
  Bytes out;
  encoder.encode(block, compressor, out);
  return out;
}

struct Decoded {
  Rows rows;
  std::vector<int> firstChanged;
};

Decoded decodedKeys(const Bytes& bytes, std::size_t count, int dim, std::uint32_t labelCount) {
  ByteReader in(bytes.data(), bytes.size());
  Decompressor decompressor;
  Arena arena;
  const auto piece = std::make_unique<KeyPiece>();
  KeyDecoder decoder;
  decoder.parse(in, static_cast<std::uint32_t>(count), dim, labelCount, decompressor, arena);
  decoder.verify(labelCount);
  decoder.rewind();
  Decoded decoded;
  for (std::size_t done = 0; done < count;) {
    const std::size_t now = std::min(kPieceRecords, count - done);
    decoder.next(now, *piece);
    for (std::size_t i = 0; i < now; ++i) {
      std::vector<int> row;
      for (std::size_t j = 0; j < static_cast<std::size_t>(dim); ++j) {
        row.push_back(static_cast<int>(piece->columns[j][i]));
      }
      decoded.rows.push_back(row);
      decoded.firstChanged.push_back(piece->firstChanged[i]);
    }
    done += now;
  }
  return decoded;
}

// Pseudo-random distinct rows in ascending order.
Rows scattered(int dim, int highest, std::size_t count) {
  std::set<std::vector<int>> rows;
  std::uint32_t state = 12345;
  while (rows.size() < count) {
    std::vector<int> row;
    for (int j = 0; j < dim; ++j) {
      state = state * 1664525U + 1013904223U;
      row.push_back(1 + static_cast<int>((state >> 8U) % static_cast<unsigned>(highest)));
    }
    rows.insert(row);
  }
  return {rows.begin(), rows.end()};
}

TEST(KeyCodec, scatteredKeysComeBackInEveryDimension) {
  for (int dim = 1; dim <= kMaxDimension; ++dim) {
    const Rows rows = scattered(dim, 5000, 2500);
    const Bytes bytes = encodedKeys(rows, dim, 5000);
    EXPECT_EQ(decodedKeys(bytes, rows.size(), dim, 5000).rows, rows) << dim;
  }
}

TEST(KeyCodec, aDenseCubeTakesAFewBytesOfOneColumn) {
  Rows rows;
  for (int i = 1; i <= 20; ++i) {
    for (int j = 21; j <= 40; ++j) {
      for (int k = 41; k <= 90; ++k) rows.push_back({i, j, k});
    }
  }
  const Bytes bytes = encodedKeys(rows, 3, 90);
  EXPECT_LT(bytes.size(), 400U) << "20000 records";
  EXPECT_EQ(decodedKeys(bytes, rows.size(), 3, 90).rows, rows);
}

TEST(KeyCodec, tellsTheFirstChangedPosition) {
  const Rows rows = {{1, 1, 1}, {1, 1, 2}, {1, 2, 1}, {2, 1, 1}, {2, 1, 5}};
  const Decoded decoded = decodedKeys(encodedKeys(rows, 3, 9), rows.size(), 3, 9);
  EXPECT_EQ(decoded.firstChanged, (std::vector<int>{0, 2, 1, 0, 2}));
}

TEST(KeyCodec, theHighestLabelComesBack) {
  const Rows rows = {{1}, {2147483647}};
  EXPECT_EQ(decodedKeys(encodedKeys(rows, 1, 2147483647U), 2, 1, 2147483647U).rows, rows);
}

TEST(KeyCodec, oneRecordNeedsNoPlanes) {
  const Rows rows = {{7, 9}};
  const Bytes bytes = encodedKeys(rows, 2, 9);
  EXPECT_EQ(bytes.size(), 2U * (4 + 4 + 1 + 4));
  EXPECT_EQ(decodedKeys(bytes, 1, 2, 9).rows, rows);
}

TEST(KeyCodec, refusesKeysBeyondTheLabels) {
  const Rows rows = {{1, 1}, {1, 9}, {2, 9}};
  const Bytes bytes = encodedKeys(rows, 2, 9);
  EXPECT_NO_THROW(decodedKeys(bytes, 3, 2, 9));
  EXPECT_THROW(decodedKeys(bytes, 3, 2, 8), Malformed);
}

TEST(KeyCodec, refusesARecordThatStandsTwice) {
  Bytes column;
  appendLittle(column, std::uint32_t{1});
  appendLittle(column, std::uint32_t{0});
  column.push_back(1);
  column.insert(column.end(), {kPlanePlain, 1, 0, 1});
  EXPECT_THROW(decodedKeys(column, 4, 1, 9), Malformed);
  column[column.size() - 2] = 1;
  EXPECT_EQ(decodedKeys(column, 4, 1, 9).rows, (Rows{{1}, {2}, {3}, {4}}));
}

TEST(KeyCodec, refusesGrowthThatWouldWrapAround) {
  Bytes column;
  appendLittle(column, std::uint32_t{5});
  appendLittle(column, std::uint32_t{0});
  column.push_back(4);
  // 0xFFFFFFFE: two less, were it added.
  column.insert(column.end(),
                {kPlanePlain, 0xFE, kPlanePlain, 0xFF, kPlanePlain, 0xFF, kPlanePlain, 0xFF});
  EXPECT_THROW(decodedKeys(column, 2, 1, 9), Malformed);
}

TEST(KeyCodec, refusesMoreThanOneScalarRecord) {
  EXPECT_NO_THROW(decodedKeys({}, 1, 0, 9));
  EXPECT_THROW(decodedKeys({}, 2, 0, 9), Malformed);
}

}  // namespace
}  // namespace rxffile
