#include "kernel/persistence/stream_loader.h"

#include "kernel/platform/streams.h"

namespace veska {

void TStreamLoader::LoadInfo() {
  for (int header_string = 0; header_string < 3; ++header_string) (void)Reader().ReadString();
}

TStreamLoader::OpenFile::OpenFile(TStreamLoader& loader, const String& file_name)
    : loader_(loader), stream_(std::make_unique<TFileStream>(file_name, TFileMode::fmOpenRead)) {
  reader_ = std::make_unique<TReader>(*stream_, TReader::kDefaultBufferSize);
  loader_.reader_ = reader_.get();
}

TStreamLoader::OpenFile::~OpenFile() { loader_.reader_ = nullptr; }

std::string TStreamLoader::OpenFile::ReadSignature() { return reader_->ReadSignature(); }

}  // namespace veska
