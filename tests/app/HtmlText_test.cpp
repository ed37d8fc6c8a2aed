#include "app/HtmlText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "base/ErrorState.h"

namespace vl {
namespace {

TEST(HtmlText, GivesWhatAReaderSees) {
    struct Case {
        const char* html;
        const char* text;
    };
    static constexpr Case cases[] = {
        {"", ""},
        {"<b>Project</b> meeting", "Project meeting"},
        {"<p>One</p><p>Two</p>", "One\n\nTwo"},
        {"One<br>Two<BR/>Three<br />Four", "One\nTwo\nThree\nFour"},
        {"<div>One</div><div>Two</div>", "One\nTwo"},
        {"<div>One</div><div><br></div><div>Two</div>", "One\n\nTwo"},  // an empty line as mail has
        {"<div><div>One</div></div>\n <div>Two</div>", "One\nTwo"},
        {"One<br></div><div>Two", "One\nTwo"},
        {"<ul>\n <li>One</li>\n <li>Two<ul><li>Three</ul>\n</ul>after", "One\nTwo\nThree\nafter"},
        {"<h1>Title</h1>Text", "Title\n\nText"},
        {"  <i> a \n\t b </i>  c ", "a b c"},
        {"a<b> </b>b", "a b"},
        {"<pre>\n a\n  b </pre>c", " a\n  b \nc"},
        {"<table><tr><td>a</td> <td>b</td></tr><tr><th>c</th><td>d</td></tr></table>e",
         "a\tb\nc\td\ne"},
        {"<html><head><title>T</title><style>p {color:red}</style></head><body>Text</body></html>",
         "Text"},
        {"<style>a > b {}</style>x<script>if (a < b) alert('</b>');</script>y", "xy"},
        {"a<!-- <p>hidden</p> -->b", "ab"},
        {"<!DOCTYPE html><?xml version=\"1.0\"?>a", "a"},
        {"<!--[if mso]><p>office</p><![endif]-->a<![if !mso]>b<![endif]>", "ab"},
        {"<o:p>&nbsp;</o:p><p class=MsoNormal>Text</p>", " \n\nText"},
        {"<a href=\"http://example.com/?a=1&b=2\" title='x > y'>link</a>", "link"},
        {"<img alt=\"a\" src='x.png'>pic", "pic"},
        {"<P>big</P>small", "big\n\nsmall"},
        {"<b>&lt;b&gt;</b>", "<b>"},
        {"<span>\xC3\x84\xF0\x9F\x94\x94</span>", "\xC3\x84\xF0\x9F\x94\x94"},
        {"<template>no</template>yes", "yes"},
        {"<a title = 'x > y' rel= \"z > 1\">link</a>", "link"},
        {"<!--[if !mso]><!-->for all<!--<![endif]--><!-->a<!--->b", "for allab"},
        {"<head>1</head>a<head>2</head>b<body>c", "abc"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.html);
        EXPECT_EQ(htmlToText(c.html), c.text);
    }
}

TEST(HtmlText, LeavesTextWithoutTagsAlone) {
    for (const char* text : {"Project meeting",
                             "1 < 2",
                             "a <- b -> c",
                             "x <3 y",
                             "two  blanks\r\nand a line",
                             " ",
                             "Mail from <john@example.com>",
                             "see <https://example.com/a?b>",
                             "<>",
                             "<",
                             "</",
                             "< b>",
                             "a & b",
                             "R&D; & co",
                             "&;",
                             "&#;",
                             "&#x;",
                             "&unknown;",
                             "100 % <sure",
                             "<!never closed",
                             "<!-- never closed",
                             "a=\"<b\"",
                             "\xFF\xC3"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(htmlToText(text), text);
    }
}

TEST(HtmlText, ResolvesReferences) {
    struct Case {
        const char* html;
        const char* text;
    };
    static constexpr Case cases[] = {
        {"Tom &amp; Jerry", "Tom & Jerry"},
        {"&amp;lt;", "&lt;"},  // once
        {"&auml;&Ouml;&szlig;", "\xC3\xA4\xC3\x96\xC3\x9F"},
        {"&yuml;&times;&divide;", "\xC3\xBF\xC3\x97\xC3\xB7"},
        {"&euro;&hellip;&ndash;", "\xE2\x82\xAC\xE2\x80\xA6\xE2\x80\x93"},
        {"&#65;&#x42;&#X43;", "ABC"},
        {"&#128276;", "\xF0\x9F\x94\x94"},
        {"&#150;&#146;", "\xE2\x80\x93\xE2\x80\x99"},  // meant in the Windows code page
        {"&#0;&#xD800;&#x110000;&#99999999999999999999;",
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"a&nbsp;&nbsp;b", "a  b"},
        {"Fish &amp chips", "Fish & chips"},
        {"?a=1&lt=2", "?a=1&lt=2"},
        {"&AMP;&quot;&apos;", "&\"'"},
        {"&Alpha;&omega;", "\xCE\x91\xCF\x89"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.html);
        EXPECT_EQ(htmlToText(c.html), c.text);
    }
}

TEST(HtmlText, MakesSomethingOfBrokenMarkup) {
    struct Case {
        const char* html;
        const char* text;
    };
    static constexpr Case cases[] = {
        {"<b>a<i>b</b>c</i>", "abc"},
        {"a</p>b", "a\n\nb"},
        {"<a href=\"x>link</a> more", "link more"},  // the quote is never closed
        {"<a title=it's>x</a><b title=\"y\">z", "xz"},
        {"<b>a<c", "a<c"},
        {"<script>never closed <p>x", ""},
        {"a<head>no end<body>b", "ab"},
        {"<head><title>T</title><body><header>Hi</header>x", "Hi\nx"},
        {"<script>if (a</scripts) {}</script>seen", "seen"},
        {"a<head>no head at all", "ano head at all"},
        {"<b><!-- a", "<!-- a"},
        {"<b>x</", "x</"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.html);
        EXPECT_EQ(htmlToText(c.html), c.text);
    }
}

TEST(HtmlText, TakesLinearTimeWhateverComes) {
    const char* const pieces[] = {"<",
                                  "<a ",
                                  "<a =\">\" ",
                                  "<a b='",
                                  "<!--",
                                  "<!",
                                  "<head>",
                                  "<b",
                                  "&",
                                  "&#1",
                                  "</",
                                  "<script/>",
                                  "<pre>\r\n",
                                  "<a =\"",
                                  "'>",
                                  "<style",
                                  "\"<p>\"",
                                  "<head></head>",
                                  "<head><body>",
                                  "<head></header>",
                                  "<a = \" ",
                                  "<a =   ",
                                  "<!-->"};
    for (const char* piece : pieces) {
        SCOPED_TRACE(piece);
        std::string html;
        while (html.size() < 400'000) {
            html += piece;
        }
        html += "</head>";  // far away from all that ask for it
        const auto start = std::chrono::steady_clock::now();
        (void)htmlToText(html);
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        EXPECT_LT(spent.count(), 3.0);  // quadratic ways take far longer
    }
}

TEST(HtmlText, ComesToAnEndWithAnyBytes) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    static constexpr const char* kPieces[] = {
        "<",   ">",   "&",    "\"",   "'",      "=",         "/",        "!--",  "--",
        "pre", "br",  "head", "body", "script", "</script>", "<td>",     "<p>",  " ",
        "\n",  "amp", ";",    "#x41", "a",      "\xC3",      "\xC3\xA4", "\xFF", "<b a=\""};
    ErrorState::set(ErrNo::Locked);
    for (int round = 0; round < 5000; ++round) {
        std::string html;
        for (auto n = random() % 40; n > 0; --n) {
            html += kPieces[random() % std::size(kPieces)];
        }
        const std::string text = htmlToText(html);
        ASSERT_LE(text.size(), html.size() + 3) << html;
    }
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
