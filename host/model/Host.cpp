#include "host/model/Host.h"

#include "host/model/HostState.h"
#include "host/model/objects/ApplicationObjects.h"
#include "host/package/ContentTypes.h"

namespace quillmarch::host {

namespace {

// Window handles that no real window system would give out, and never 0.
constexpr std::int32_t kFirstWindow = 0x51000;

}  // namespace

Host::Host(const Personality& personality) : state_(std::make_unique<State>()) {
  state_->session->personality = personality;
}

Host::~Host() = default;

Result<void> Host::Open(const std::string& path, std::vector<std::string>& warnings) {
  Result<std::unique_ptr<deck::Deck>> opened = deck::Deck::Open(path, warnings);
  if (!opened) return std::move(opened).error();
  model::Session& session = *state_->session;
  auto open = std::make_unique<model::OpenDeck>();
  open->path = path;
  open->deck = *std::move(opened);
  open->window = kFirstWindow + static_cast<std::int32_t>(session.decks.size());
  open->deck->SetFit([&session, deck = open->deck.get()](const deck::ShapeAddress& address) {
    session.measure.Fit(*deck, address);
  });
  session.active = session.decks.size();
  session.decks.push_back(std::move(open));
  return {};
}

void Host::ExpectMeasuring() {
  state_->session->measure.Prepare();
}

Result<void> Host::Save(const std::string& path) {
  const model::OpenDeck* const open = state_->session->Active();
  if (open != nullptr) return open->deck->Save(path);
  return Error{ErrorCode::kNotFound, "No presentation is open."};
}

Result<std::string> Host::SaveBytes() {
  const model::OpenDeck* const open = state_->session->Active();
  if (open != nullptr) return open->deck->SaveBytes();
  return Error{ErrorCode::kNotFound, "No presentation is open."};
}

std::string Host::ContentType() const {
  const model::OpenDeck* const open = state_->session->Active();
  if (open == nullptr) return {};
  return open->deck->package().ContentType(open->deck->PresentationPart());
}

void Host::PutContentType(const std::string& type) {
  const model::OpenDeck* const open = state_->session->Active();
  if (open == nullptr || ContentType() == type) return;
  Package& package = open->deck->package();
  const Result<std::string> types = package.ReadXmlPart(kContentTypesPart);
  if (!types) return;
  package.PutPart(kContentTypesPart, WithContentType(*types, open->deck->PresentationPart(), type));
}

bool Host::Edited() const {
  const model::OpenDeck* const open = state_->session->Active();
  return open != nullptr && open->deck->Edited();
}

std::int32_t Host::SlideCount() const {
  const model::OpenDeck* const open = state_->session->Active();
  return open == nullptr ? 0 : static_cast<std::int32_t>(open->deck->SlideCount());
}

bool Host::ShowSlide(std::int32_t index) {
  model::OpenDeck* const open = state_->session->Active();
  if (open == nullptr || index < 1 || index > SlideCount()) return false;
  open->Show(static_cast<std::uint32_t>(index) - 1);
  return true;
}

ObjectRef Host::application() const {
  return model::Make<model::ApplicationObject>(state_->session);
}

}  // namespace quillmarch::host
