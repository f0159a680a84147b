#include "structure/keys.h"

#include "support/text/text.h"

namespace trelm {
namespace {

void startAtomText(int resID, std::string_view atomName, std::string &text)
{
    text.clear();
    appendInt(text, resID, 0);
    text.push_back(' ');
    appendLeft(text, atomName, 4);
    text.push_back(' ');
}

void endAtomText(std::string_view segName, std::string &text)
{
    text.push_back(' ');
    appendLeft(text, segName, 4);
}

} // namespace

void buildAtomText(int resID, std::string_view atomName, std::string_view icode, std::string_view chainName,
                   std::string_view segName, std::string &atomText)
{
    startAtomText(resID, atomName, atomText);
    appendLeft(atomText, icode, 1);
    appendLeft(atomText, chainName, 1);
    endAtomText(segName, atomText);
}

void buildLookupText(int resID, std::string_view atomName, std::string_view chainName,
                     std::string_view segName, std::string &atomText)
{
    startAtomText(resID, atomName, atomText);
    if (chainName.size() < 2)
        atomText.append(2 - chainName.size(), ' ');
    atomText.append(chainName);
    endAtomText(segName, atomText);
}

void buildResText(int resID, std::string_view chainName, std::string_view segName, std::string &text)
{
    text.clear();
    appendInt(text, resID, 0);
    text.push_back(' ');
    appendLeft(text, chainName, 2);
    text.push_back(' ');
    appendLeft(text, segName, 4);
}

void buildChainText(std::string_view chainName, std::string_view segName, std::string &text)
{
    text.clear();
    appendLeft(text, chainName, 2);
    text.push_back(' ');
    appendLeft(text, segName, 4);
}

void buildSegText(std::string_view segName, std::string_view chainName, std::string &text)
{
    text.clear();
    appendLeft(text, segName, 4);
    text.push_back(' ');
    appendLeft(text, chainName, 2);
}

} // namespace trelm
