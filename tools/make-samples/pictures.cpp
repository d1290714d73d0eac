// SPDX-License-Identifier: MIT
#include "pictures.h"

#include "encoders.h"

namespace samples {
namespace {

constexpr Colour ginger{232, 148, 62};
constexpr Colour darkGinger{190, 106, 34};
constexpr Colour cream{252, 232, 205};
constexpr Colour ink{45, 36, 40};

/// A cat's head seen from the front, some 70 pixels wide.
void paintHead(Canvas& canvas, int x, int y, bool awake) {
    for (const int side : {-1, 1}) {
        canvas.fill(
            polygon({{x + side * 30, y - 6}, {x + side * 27, y - 44}, {x + side * 4, y - 26}}),
            flat(ginger));
        canvas.fill(
            polygon({{x + side * 26, y - 14}, {x + side * 24, y - 36}, {x + side * 11, y - 25}}),
            flat({240, 170, 150}));
    }
    canvas.fill(ellipse(x, y, 34, 28), downwards(y - 28, y + 28, {ginger, {240, 168, 92}}));
    for (const int stripe : {-10, 0, 10})
        canvas.fill(stroke({{x + stripe, y - 25}, {x + stripe * 2 / 3, y - 13}}, 4),
                    flat(darkGinger));
    for (const int side : {-1, 1}) {
        canvas.fill(ellipse(x + side * 9, y + 12, 11, 9), flat(cream));
        if (awake) {
            canvas.fill(ellipse(x + side * 14, y - 2, 7, 8), flat({235, 240, 150}));
            canvas.fill(ellipse(x + side * 14, y - 2, 3, 7), flat(ink));
            canvas.fill(ellipse(x + side * 14 - 2, y - 5, 2, 2), flat({255, 255, 255}));
        } else {
            canvas.fill(
                stroke({{x + side * 20, y - 2}, {x + side * 14, y + 2}, {x + side * 8, y - 2}}, 3),
                flat(ink));
        }
        for (const int lift : {-4, 0, 4})
            canvas.fill(
                stroke({{x + side * 16, y + 11 + lift / 2}, {x + side * 42, y + 8 + lift * 2}}, 1),
                flat({255, 250, 240}), 200);
    }
    canvas.fill(polygon({{x - 4, y + 5}, {x + 4, y + 5}, {x, y + 10}}), flat({220, 110, 110}));
    canvas.fill(
        stroke({{x - 9, y + 13}, {x - 5, y + 16}, {x, y + 12}, {x + 5, y + 16}, {x + 9, y + 13}},
               2),
        flat(ink), 180);
}

Canvas bathroom() {
    Canvas canvas(320, 240, {222, 238, 240});
    canvas.fill(rectangle(0, 0, 320, 240), downwards(0, 240, {{178, 219, 224}, {226, 243, 242}}));
    for (int i = 0; i < 14; ++i) {
        canvas.fill(rectangle(i * 26, 0, 1, 170), flat({255, 255, 255}), 170);
        canvas.fill(rectangle(0, i * 26, 320, 1), flat({255, 255, 255}), i < 7 ? 170 : 0);
    }
    canvas.fill(rectangle(0, 176, 320, 64), downwards(176, 240, {{196, 158, 120}, {158, 120, 88}}));
    for (const int y : {190, 208, 228})
        canvas.fill(rectangle(0, y, 320, 1), flat({128, 94, 66}), 150);
    return canvas;
}

}  // namespace

QByteArray catInBathtub() {
    Canvas canvas = bathroom();
    // The tap, and the drop that hangs from it.
    canvas.fill(stroke({{262, 40}, {262, 66}, {238, 66}, {238, 76}}, 9),
                downwards(36, 80, {{245, 248, 250}, {120, 130, 140}}));
    canvas.fill(stroke({{250, 40}, {274, 40}}, 8), flat({150, 160, 170}));
    canvas.fill(ellipse(238, 86, 3, 4), flat({110, 180, 225}));
    // The cat sits behind the tub's edge.
    canvas.fill(stroke({{200, 150}, {226, 128}, {222, 104}, {206, 96}}, 13), flat(darkGinger));
    canvas.fill(ellipse(160, 150, 48, 52), downwards(98, 170, {ginger, {224, 138, 54}}));
    for (const int y : {126, 138, 150}) {
        canvas.fill(stroke({{116, y}, {136, y + 4}}, 4), flat(darkGinger));
        canvas.fill(stroke({{204, y}, {184, y + 4}}, 4), flat(darkGinger));
    }
    canvas.fill(ellipse(160, 148, 22, 34), flat(cream));
    paintHead(canvas, 160, 88, true);
    // The tub: an edge, a belly, two feet.
    const Shape belly = both(ellipse(160, 150, 128, 66), rectangle(0, 150, 320, 90));
    for (const int x : {84, 236})
        canvas.fill(ellipse(x, 214, 14, 12), flat({176, 142, 60}));
    canvas.fill(ellipse(160, 222, 110, 8), flat({90, 66, 46}), 90);
    canvas.fill(belly, downwards(150, 216, {{255, 255, 255}, {226, 232, 240}, {176, 188, 204}}));
    canvas.fill(stroke({{34, 150}, {286, 150}}, 15),
                downwards(142, 158, {{255, 255, 255}, {205, 214, 226}}));
    for (const int x : {138, 182}) {
        canvas.fill(ellipse(x, 147, 13, 9), flat(cream));
        for (const int toe : {-4, 4})
            canvas.fill(stroke({{x + toe, 148}, {x + toe, 153}}, 1), flat(darkGinger));
    }
    // Foam.
    for (int i = 0; i < 26; ++i)
        canvas.fill(
            ellipse(44 + noise(7, i, 0) * 60 / 256 + (i % 2) * 170, 140 - noise(7, i, 1) * 14 / 256,
                    4 + noise(7, i, 2) * 6 / 256, 4 + noise(7, i, 2) * 6 / 256),
            flat({255, 255, 255}), 190);
    return encodeJpeg(canvas);
}

QByteArray eveningByTheLake() {
    Canvas canvas(320, 240, {0, 0, 0});
    canvas.fill(
        rectangle(0, 0, 320, 150),
        downwards(
            0, 150,
            {{48, 46, 110}, {126, 74, 142}, {226, 112, 112}, {255, 190, 112}, {255, 226, 150}}));
    for (int i = 0; i < 40; ++i)
        canvas.fill(ellipse(noise(3, i, 0) * 320 / 256, noise(3, i, 1) * 60 / 256, 1, 1),
                    flat({255, 250, 230}), 60 + noise(3, i, 2) / 2);
    canvas.fill(ellipse(214, 108, 46, 46), flat({255, 236, 170}), 60);
    canvas.fill(ellipse(214, 108, 34, 34), flat({255, 238, 176}), 90);
    canvas.fill(ellipse(214, 108, 24, 24), flat({255, 246, 204}));
    canvas.fill(both(hills(11, 62, 140, 90), rectangle(0, 0, 320, 150)), flat({150, 92, 138}), 220);
    canvas.fill(both(hills(24, 92, 146, 64), rectangle(0, 0, 320, 150)), flat({104, 62, 116}));
    canvas.fill(both(hills(35, 118, 152, 30), rectangle(0, 0, 320, 152)), flat({58, 40, 84}));
    canvas.fill(
        rectangle(0, 150, 320, 90),
        downwards(150, 240, {{250, 186, 124}, {206, 110, 122}, {104, 64, 128}, {44, 40, 96}}));
    // The sun's way over the water, broken by ripples.
    for (int i = 0; i < 34; ++i) {
        const int y = 152 + i * i * 86 / 1156;
        const int half = 8 + i / 2 + noise(5, i, 0) * 12 / 256;
        const int x = 214 + (noise(5, i, 1) - 128) * 12 / 128;
        canvas.fill(stroke({{x - half, y}, {x + half, y}}, 1 + i / 16), flat({255, 232, 170}),
                    150 - i * 3);
    }
    // A jetty, two friends and a cat on it.
    for (const int x : {30, 66, 102})
        canvas.fill(rectangle(x, 196, 5, 44), flat({26, 20, 40}));
    canvas.fill(rectangle(0, 192, 122, 7), flat({36, 26, 48}));
    const Paint shade = flat({24, 18, 38});
    for (const int x : {48, 72}) {
        canvas.fill(ellipse(x, 160, 7, 8), shade);
        canvas.fill(polygon({{x - 10, 194}, {x - 7, 170}, {x + 7, 170}, {x + 10, 194}}), shade);
        canvas.fill(stroke({{x + 4, 192}, {x + 8, 208}}, 6), shade);
    }
    canvas.fill(ellipse(98, 186, 8, 9), shade);
    canvas.fill(ellipse(98, 174, 6, 5), shade);
    canvas.fill(polygon({{92, 174}, {93, 164}, {98, 171}, {103, 164}, {104, 174}}), shade);
    canvas.fill(stroke({{105, 191}, {114, 186}, {114, 178}}, 3), shade);
    return encodePng(canvas);
}

QByteArray sleepingCat() {
    std::vector<Canvas> frames;
    for (const int lift : {0, 8, 16}) {
        Canvas canvas(160, 112, {102, 153, 204});
        canvas.fill(ellipse(80, 94, 74, 14), flat({51, 106, 153}));
        canvas.fill(ellipse(80, 88, 70, 14), flat({204, 64, 102}));
        canvas.fill(stroke({{112, 82}, {138, 78 - lift / 2}, {146, 62 - lift}}, 12),
                    flat(darkGinger));
        canvas.fill(ellipse(90, 70, 42, 26), flat(ginger));
        for (const int x : {92, 104, 116})
            canvas.fill(stroke({{x, 50 + (x - 92) / 4}, {x - 3, 62}}, 4), flat(darkGinger));
        paintHead(canvas, 48, 66, false);
        // Sleep, in letters.
        for (int i = 0; i < 2; ++i) {
            const int x = 84 + i * 18 + lift / 4;
            const int y = 34 - i * 14 - lift / 3;
            const int size = 8 + i * 4;
            canvas.fill(stroke({{x, y - size}, {x + size, y - size}, {x, y}, {x + size, y}}, 2),
                        flat({255, 255, 255}));
        }
        frames.push_back(canvas);
    }
    frames.push_back(frames[1]);
    return encodeGif(frames, 30);
}

QByteArray lighthouse() {
    Canvas canvas(240, 180, {16, 24, 58});
    canvas.fill(rectangle(0, 0, 240, 180),
                downwards(0, 140, {{12, 16, 48}, {34, 58, 110}, {96, 120, 160}}));
    for (int i = 0; i < 50; ++i)
        canvas.fill(ellipse(noise(9, i, 0) * 240 / 256, noise(9, i, 1) * 110 / 256, 1, 1),
                    flat({255, 255, 240}), 70 + noise(9, i, 2) / 2);
    canvas.fill(ellipse(46, 36, 16, 16), flat({255, 248, 214}));
    canvas.fill(ellipse(54, 32, 14, 14), flat({20, 30, 70}));
    canvas.fill(polygon({{160, 54}, {0, 76}, {0, 120}}), flat({255, 240, 170}), 70);
    canvas.fill(polygon({{160, 54}, {240, 40}, {240, 66}}), flat({255, 240, 170}), 70);
    const Shape tower = polygon({{150, 62}, {170, 62}, {178, 150}, {142, 150}});
    canvas.fill(tower, downwards(60, 150, {{250, 246, 240}, {206, 206, 216}}));
    for (const int y : {74, 104, 134})
        canvas.fill(both(tower, rectangle(130, y, 60, 14)), flat({206, 54, 52}));
    canvas.fill(rectangle(147, 58, 26, 4), flat({40, 40, 54}));
    canvas.fill(rectangle(152, 46, 16, 12), flat({255, 236, 150}));
    canvas.fill(polygon({{148, 46}, {172, 46}, {160, 34}}), flat({160, 38, 40}));
    canvas.fill(ellipse(160, 158, 70, 18), flat({40, 44, 50}));
    canvas.fill(rectangle(0, 152, 240, 28), downwards(152, 180, {{30, 52, 92}, {14, 24, 56}}));
    for (int i = 0; i < 22; ++i) {
        const int x = noise(13, i, 0) * 240 / 256;
        const int y = 154 + noise(13, i, 1) * 24 / 256;
        canvas.fill(stroke({{x, y}, {x + 14, y}}, 1), flat({200, 214, 236}), 120);
    }
    return encodePng(canvas);
}

QByteArray foundCatPoster() {
    const QByteArray page =
        "0.91 0.58 0.24 rg 0 0 420 595 re f 1 1 1 rg 24 24 372 547 re f\n"
        "0.18 0.14 0.16 rg BT /F1 44 Tf 64 490 Td (FOUND: 1 CAT) Tj ET\n"
        "BT /F2 18 Tf 64 440 Td (Ginger. Opinionated. Answers to nothing.) Tj\n"
        "0 -28 Td (Last seen in our bathtub, where it still is.) Tj\n"
        "0 -28 Td (Likes: tuna, our warm laptop, being asked.) Tj\n"
        "0 -28 Td (Dislikes: the laptop's owner using it.) Tj ET\n"
        "0.91 0.58 0.24 rg 150 160 m 150 300 270 300 270 160 c f\n"
        "165 250 m 160 320 l 200 285 l f 255 250 m 260 320 l 220 285 l f\n"
        "0.18 0.14 0.16 rg 188 225 9 16 re f 223 225 9 16 re f\n"
        "BT /F2 18 Tf 64 90 Td (Please ring at Canal Street 12, third floor.) Tj ET\n";
    const QByteArray objects[] = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 420 595] /Contents 4 0 R\n"
        "   /Resources << /Font << /F1 5 0 R /F2 6 0 R >> >> >>",
        "<< /Length " + QByteArray::number(page.size()) + " >>\nstream\n" + page + "endstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold >>",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
    };
    QByteArray bytes("%PDF-1.4\n");
    QByteArray table("0000000000 65535 f \n");
    int number = 0;
    for (const QByteArray& object : objects) {
        table += QByteArray::number(bytes.size()).rightJustified(10, '0') + " 00000 n \n";
        bytes += QByteArray::number(++number) + " 0 obj\n" + object + "\nendobj\n";
    }
    const QByteArray count = QByteArray::number(number + 1);
    return bytes + "xref\n0 " + count + "\n" + table + "trailer\n<< /Size " + count +
           " /Root 1 0 R >>\nstartxref\n" + QByteArray::number(bytes.size()) + "\n%%EOF\n";
}

QByteArray cinnamonRolls() {
    return "CINNAMON ROLLS\n"
           "(by Mrs Okafor, downstairs; not to be shown to other bakeries)\n"
           "\n"
           "500 g flour, 250 ml warm milk, 80 g butter, 60 g sugar, 7 g dry yeast, 1 egg, salt\n"
           "For the middle: 100 g soft butter, 100 g brown sugar, 2 spoons of cinnamon\n"
           "\n"
           "1. Knead for ten minutes. Yes, ten.\n"
           "2. Leave it alone for an hour. Keep the cat off the warm bowl.\n"
           "3. Roll out, spread, roll up, cut into twelve.\n"
           "4. Another half hour. The cat again.\n"
           "5. 20 minutes at 190 degrees. Count the rolls when they come out.\n";
}

}  // namespace samples
