// Shows some surprising behaviours that are intended.
#include <cstdio>

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Messages/QBLMessageComponents.hpp"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "i18n/cpp/i18n_uri.hpp"

namespace {

void showLists() {
    QBLList<int> list;
    for (int value : {10, 20, 30}) list.push_back(value);
    const int following = *list.insert(list.begin(), 5);
    const int last = list[3], beyond = list[9];
    std::printf("insert gives %d; at 3 %d, at 9 %d\n", following, last, beyond);
    std::printf("at the end %d\n", *list.end());
}

void showTexts() {
    QBLRuntimeError error(7, "a < b");
    std::printf("%s\n", error.toString());
    I18NString xml, url;
    QBLMessageParm(static_cast<QBLMsgParm>(9)).toString("en", xml, 0);
    std::printf("%s\n", xml.c_str());
    I18NURLEncode("it's", url);
    std::printf("%s, shown %d wide\n", url.c_str(), url.displaySize());
}

void showFiles() {
    QBLFmFile file;
    char byte = 0;
    const bool opened = file.open("/absent", QBLFmFile::existing, 1);
    const long size = file.read(&byte, 1);
    std::printf("open %d, read %ld, error %d\n", opened, size, file.getLastErrorNumber());
    const bool closed = file.close();
    std::printf("close %d, error %d\n", closed, file.getLastErrorNumber());
}

void showCustodian() {
    QBLCustodian::setSchedule(~0UL);
    QBLCustodian::setSchedule(1000);
    std::printf("schedule for ever: %d\n", QBLCustodian::getSchedule() == ~0UL);
}

}  // namespace

int main() {
    showLists();
    showTexts();
    showFiles();
    showCustodian();
    std::printf("stop without a start: %d\n", qblCoreTerminate());
    return qblErrorGetText();
}
