// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A PDF whose pages are the compressed streams as they are.
#include <time.h>

#include <exception>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <string>

#include "book.h"
#include "unnamed_file.h"

namespace {

constexpr double kPointsPerInch = 72;
constexpr size_t kPiece = 65536;

// qpdf writes a few bytes at a time, and finishes in destructors, where nothing may be thrown.
class FileSink : public Pipeline {
public:
    explicit FileSink(UnnamedFile& file) : Pipeline("file", nullptr), file_(file) {}

    void write(const unsigned char* data, size_t size) override {
        buffer_.insert(buffer_.end(), data, data + size);
        if (buffer_.size() >= kPiece) flush();
    }
    void finish() override { flush(); }

    void requireSuccess() const {
        if (fault_) std::rethrow_exception(fault_);
    }

private:
    void flush() {
        try {
            if (!fault_) file_.write(buffer_);
        } catch (const std::exception&) {
            fault_ = std::current_exception();
        }
        buffer_.clear();
    }

    std::exception_ptr fault_;

    UnnamedFile& file_;
    std::vector<uint8_t> buffer_;
};

// Reads a page from the spool when its turn comes. A fault is also kept, because qpdf 12 catches what is thrown here,
// warns, and writes the other pages.
class SpoolReader : public QPDFObjectHandle::StreamDataProvider {
public:
    SpoolReader(const Spool& spool, const Spool::Place& place, std::exception_ptr& fault)
        : spool_(spool), place_(place), fault_(fault) {}

    void provideStreamData(const QPDFObjGen&, Pipeline* pipeline) override {
        try {
            const std::vector<uint8_t> bytes = spool_.read(place_);
            pipeline->write(bytes.data(), bytes.size());
            pipeline->finish();
        } catch (const std::exception&) {
            fault_ = std::current_exception();
            throw;
        }
    }

private:
    const Spool& spool_;
    Spool::Place place_;
    std::exception_ptr& fault_;
};

QPDFObjectHandle number(int value) { return QPDFObjectHandle::newInteger(value); }
QPDFObjectHandle name(const char* value) { return QPDFObjectHandle::newName(value); }

QPDFObjectHandle imageOf(QPDF& pdf, const PageStream& page) {
    QPDFObjectHandle image = QPDFObjectHandle::newStream(&pdf);
    QPDFObjectHandle dictionary = image.getDict();
    dictionary.replaceKey("/Type", name("/XObject"));
    dictionary.replaceKey("/Subtype", name("/Image"));
    dictionary.replaceKey("/Width", number(page.width));
    dictionary.replaceKey("/Height", number(page.height));
    dictionary.replaceKey("/ColorSpace", name(page.kind == PageStream::kColourJpeg ? "/DeviceRGB" : "/DeviceGray"));
    dictionary.replaceKey("/BitsPerComponent", number(page.kind == PageStream::kG4 ? 1 : 8));
    return image;
}

QPDFObjectHandle faxParameters(const PageStream& page) {
    QPDFObjectHandle parameters = QPDFObjectHandle::newDictionary();
    parameters.replaceKey("/K", number(-1));    // group 4
    parameters.replaceKey("/Columns", number(page.width));
    parameters.replaceKey("/Rows", number(page.height));
    return parameters;
}

void addPage(QPDF& pdf, const BookPage& page, const Spool& spool, std::exception_ptr& fault) {
    const bool fax = page.page.kind == PageStream::kG4;
    QPDFObjectHandle image = imageOf(pdf, page.page);
    image.replaceStreamData(std::make_shared<SpoolReader>(spool, page.place, fault),
                            name(fax ? "/CCITTFaxDecode" : "/DCTDecode"),
                            fax ? faxParameters(page.page) : QPDFObjectHandle::newNull());
    const std::string width = QPDFObjectHandle::newReal(page.page.width * kPointsPerInch / page.page.dpiX, 3).unparse();
    const std::string height =
        QPDFObjectHandle::newReal(page.page.height * kPointsPerInch / page.page.dpiY, 3).unparse();
    QPDFObjectHandle sheet = pdf.makeIndirectObject(QPDFObjectHandle::parse(
        "<< /Type /Page /MediaBox [0 0 " + width + " " + height + "] /Resources << /XObject << >> >> >>"));
    sheet.getKey("/Resources").getKey("/XObject").replaceKey("/Page", image);
    sheet.replaceKey("/Contents",
                     QPDFObjectHandle::newStream(&pdf, "q " + width + " 0 0 " + height + " 0 0 cm /Page Do Q\n"));
    QPDFPageDocumentHelper(pdf).addPage(QPDFPageObjectHelper(sheet), false);
}

std::string now() {
    const time_t seconds = time(nullptr);
    tm utc{};
    gmtime_r(&seconds, &utc);
    char text[32];
    strftime(text, sizeof(text), "D:%Y%m%d%H%M%SZ", &utc);
    return text;
}

}    // namespace

void writePdf(const BookPages& pages, const Spool& spool, UnnamedFile& file, const std::string& title,
              const std::string& mark) {
    std::exception_ptr fault;
    QPDF pdf;
    pdf.emptyPDF();
    pdf.setSuppressWarnings(true);    // the fault that they are about is thrown
    for (const auto& [order, page] : pages) addPage(pdf, page, spool, fault);
    QPDFObjectHandle about = QPDFObjectHandle::newDictionary();
    about.replaceKey("/Title", QPDFObjectHandle::newUnicodeString(title));
    about.replaceKey("/Producer", QPDFObjectHandle::newString("scanpage"));
    about.replaceKey("/CreationDate", QPDFObjectHandle::newString(now()));
    pdf.getTrailer().replaceKey("/Info", pdf.makeIndirectObject(about));
    FileSink sink(file);
    QPDFWriter writer(pdf);
    writer.setOutputPipeline(&sink);
    writer.setExtraHeaderText("% " + mark);
    writer.setDecodeLevel(qpdf_dl_none);    // the pages stay as they are
    writer.write();
    if (fault) std::rethrow_exception(fault);
    sink.requireSuccess();
}
