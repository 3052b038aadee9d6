#include "OpenGL/ImageRig.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage3D.h"

#include <functional>
#include <limits>
#include <thread>
#include <vector>

namespace {

using OpenGLImage3DTest = GPUImageTest;
using Size = XYZ<unsigned char>;

class Cube final : public iHostImage3D
{
public:
    using Colour = std::function<NormalisedRGB(int, int, int)>;
    Cube(const Size& size, Colour colour) : size_(size), colour_(std::move(colour)) {}

    Size getSize() const override { return size_; }
    NormalisedRGB getColour(unsigned char x, unsigned char y, unsigned char z) const override
    {
        return colour_(x, y, z);
    }

private:
    Size size_;
    Colour colour_;
};

Tq::Ptr<iGPUImage3D> upload(const Size& size, Cube::Colour colour)
{
    return OpenGLImage3D::create(Tq::Ptr<iHostImage3D>(new Cube(size, std::move(colour))));
}

std::vector<std::uint32_t> texels(const iGPUImage3D& cube)
{
    const Size size = cube.getLogicalSize();
    std::vector<std::uint32_t> words(std::size_t{size.x} * size.y * size.z);
    const OpenGLContextProtector protector;
    glBindTexture(GL_TEXTURE_3D, cube.getTextureID());
    glGetTexImage(GL_TEXTURE_3D, 0, GL_BGRA, GL_UNSIGNED_BYTE, words.data());
    glBindTexture(GL_TEXTURE_3D, 0);
    return words;
}

} // namespace

TEST_F(OpenGLImage3DTest, UploadsTheThirdCoordinateFastest)
{
    const auto cube = upload({3, 4, 5}, [](int i, int j, int k) {
        return NormalisedRGB(static_cast<float>(i) / 255.0f, static_cast<float>(j) / 255.0f,
                             static_cast<float>(k) / 255.0f, 0.25f);
    });
    ASSERT_TRUE(cube);
    EXPECT_EQ(cube->getLogicalSize(), (Size{3, 4, 5}));
    EXPECT_EQ(cube->getPhysicalSize(), (Size{3, 4, 5}));
    const auto words = texels(*cube);
    ASSERT_EQ(words.size(), 60u);
    for (unsigned int i = 0; i < 3; ++i)
        for (unsigned int j = 0; j < 4; ++j)
            for (unsigned int k = 0; k < 5; ++k)
                EXPECT_EQ(words[(i * 4 + j) * 5 + k], 0xFF000000u | i << 16 | j << 8 | k)
                    << "at " << i << ", " << j << ", " << k;
}

TEST_F(OpenGLImage3DTest, RoundsAndCutsColours)
{
    const struct
    {
        float component;
        unsigned int byte;
    } cases[] = {{-1.0f, 0},
                 {0.0f, 0},
                 {0.00195f, 0},
                 {0.00197f, 1},
                 {0.5f, 128},
                 {0.999f, 255},
                 {1.0f, 255},
                 {7.0f, 255},
                 {std::numeric_limits<float>::infinity(), 255},
                 {-std::numeric_limits<float>::infinity(), 0},
                 {std::numeric_limits<float>::quiet_NaN(), 255}};
    for (const auto& c : cases) {
        const auto cube = upload(
            {1, 1, 1}, [&](int, int, int) { return NormalisedRGB(0.0f, c.component, 0.0f); });
        EXPECT_EQ(texels(*cube).at(0), 0xFF000000u | c.byte << 8) << c.component;
    }
}

TEST_F(OpenGLImage3DTest, TakesCubesOfAnySize)
{
    EXPECT_FALSE(OpenGLImage3D::create(nullptr));
    const auto grey = [](int, int, int) { return NormalisedRGB(0.5f, 0.5f, 0.5f); };
    for (const Size& size : {Size{255, 255, 1}, Size{1, 255, 255}, Size{255, 1, 255}, Size{0, 0, 0},
                             Size{0, 9, 9}, Size{9, 9, 0}}) {
        const auto cube = upload(size, grey);
        ASSERT_TRUE(cube);
        if (size.x && size.y && size.z) {
            EXPECT_EQ(cube->getLogicalSize(), size);
            EXPECT_EQ(texels(*cube).back(), 0xFF808080u);
        }
    }
}

TEST_F(OpenGLImage3DTest, ItsTextureGoesWithItOnWhicheverThread)
{
    auto cube = upload({2, 2, 2}, [](int, int, int) { return NormalisedRGB(); });
    const unsigned int name = cube->getTextureID();
    const auto exists = [&] {
        const OpenGLContextProtector protector;
        return glIsTexture(name) == GL_TRUE;
    };
    EXPECT_TRUE(exists());
    std::thread([&] { cube.reset(); }).join();
    EXPECT_FALSE(exists());
}
