// What the translation client needs to know of a run.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "foundation/settings/TargetStyle.h"
#include "foundation/text/Wide.h"
#include "foundation/transport/Endpoint.h"
#include "foundation/transport/HttpTransport.h"

namespace quillmarch::addin {

struct GlossaryEntry {
  Wide source;
  Wide target;
  Wide note;
};

struct TranslateBatchRequest {
  std::vector<Wide> texts;
  std::vector<Wide> unitIds;
  Wide sourceLang;
  Wide targetLang;
  Wide usageKind;
  Wide clientProduct;
  Wide instruction;
  std::vector<GlossaryEntry> glossary;
  Wide clientTraceId;
  std::uint64_t runId = 0;
  std::uint32_t batchSeq = 0;
};

struct TranslateBatchResult {
  bool ok = false;
  std::vector<Wide> translations;
  std::vector<Wide> unitIds;
  Wide code;
  Wide message;
};

using TranslateHook = std::function<TranslateBatchResult(const TranslateBatchRequest&)>;

// One for each run, inside the controller. Filled on the host thread before the worker starts;
// `instruction` and `glossary` are written by the worker before the first batch.
struct TranslateConfig {
  Wide host = DefaultEndpoint().host;
  std::uint16_t port = DefaultEndpoint().port;
  bool useHttps = DefaultEndpoint().useHttps;
  Wide targetLang = u"zh-CN";
  Wide sourceLang = u"auto";
  Wide accessToken;
  Wide usageKind = u"translate_full";
  Wide clientProduct = u"ppt";
  TargetStyle targetStyle;
  TranslateHook translateViaPage;  // empty: native HTTP
  RunFlag cancelled{0};
  RunFlag paused{0};
  Wide clientTraceId;
  std::uint64_t runId = 0;
  std::uint32_t batchSeq = 0;  // never raised: batches stay unnumbered
  Wide instruction;
  std::vector<GlossaryEntry> glossary;
};

}  // namespace quillmarch::addin
