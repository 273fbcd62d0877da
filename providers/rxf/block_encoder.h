// A block of records to the bytes of its body: key columns, then value slots.
#ifndef ZTB_PROVIDERS_RXF_BLOCK_ENCODER_H_
#define ZTB_PROVIDERS_RXF_BLOCK_ENCODER_H_

#include "providers/rxf/bytes.h"
#include "providers/rxf/key_codec.h"
#include "providers/rxf/record_block.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/value_encoder.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class BlockEncoder {
 public:
  // Body of a block that is not empty; valid until the next call. With `specials`, values of that
  // table are stored as codes.
  const Bytes& encode(const RecordBlock& block, const SpecialTable* specials,
                      Compressor& compressor) {
    body_.clear();
    keys_.encode(block, compressor, body_);
    for (int s = 0; s < block.slots(); ++s) {
      values_.encode(block.valueColumn(s), block.count(), specials, compressor, body_);
    }
    return body_;
  }

 private:
  KeyEncoder keys_;
  ValueEncoder values_;
  Bytes body_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_BLOCK_ENCODER_H_
