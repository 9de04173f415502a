#include "Catalogue/Linux/LinuxCatalogue.h"

// What programmers' tools keep and can get back at a cost that the row states: a large download, hours of
// building, or a project that does not start until someone acts.

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

const QList<HostRule> &developerRules()
{
    // clang-format off
    static const QList<HostRule> table = {
        {
            .rule = {
                .id = u"python.packages"_s,
                .title = u"Downloaded Python packages"_s,
                .what = u"Copies of Python packages that uv, conda and pixi keep to share between projects."_s,
                .regenerates = u"Downloaded again on the next install. Projects share these files, so less space may come back than shown. A tool started with `uvx` may stop, and an environment that links here must be made again."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/uv"_s, u"uv"_s },
                { u"miniconda3/pkgs"_s, u"Miniconda"_s },
                { u"anaconda3/pkgs"_s, u"Anaconda"_s },
                { u"miniforge3/pkgs"_s, u"Miniforge"_s },
                { u"mambaforge/pkgs"_s, u"Mambaforge"_s },
                { u".conda/pkgs"_s, u"conda"_s },
                { u".local/share/mamba/pkgs"_s, u"Mamba"_s },
                { u"micromamba/pkgs"_s, u"micromamba"_s },
                { u".cache/rattler/cache"_s, u"pixi"_s },
            },
        },
        {
            .rule = {
                .id = u"python.envs"_s,
                .title = u"Python project environments"_s,
                .what = u"Private sets of Python packages, one per project, made by Poetry, Pipenv, conda and similar tools."_s,
                .regenerates = u"Can be made again from the project's package list, if it has one. What you put in by hand is gone: packages, scripts of your own that run when an environment starts, and unsaved work on packages you edit in place."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/pypoetry/virtualenvs"_s, u"Poetry"_s },
                { u".local/share/virtualenvs"_s, u"Pipenv"_s },
                { u".virtualenvs"_s, u"virtualenvwrapper"_s },
                { u".local/share/hatch/env"_s, u"Hatch"_s },
                { u"miniconda3/envs"_s, u"Miniconda"_s },
                { u"anaconda3/envs"_s, u"Anaconda"_s },
                { u"miniforge3/envs"_s, u"Miniforge"_s },
                { u"mambaforge/envs"_s, u"Mambaforge"_s },
                { u".conda/envs"_s, u"conda"_s },
                { u".local/share/mamba/envs"_s, u"Mamba"_s },
                { u"micromamba/envs"_s, u"micromamba"_s },
            },
        },
        {
            .rule = {
                .id = u"cargo.registry"_s,
                .title = u"Downloaded Rust packages"_s,
                .what = u"Code libraries Cargo downloaded for building Rust programs, and the unpacked copies of them."_s,
                .regenerates = u"Restored on the next build. Needs a network connection, so not before an offline trip."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cargo/registry/cache"_s, u"Archives"_s },
                { u".cargo/registry/src"_s, u"Unpacked"_s },
                { u".cargo/git/db"_s, u"From git"_s },
                { u".cargo/git/checkouts"_s, u"From git, unpacked"_s },
            },
        },
        {
            .rule = {
                .id = u"go.caches"_s,
                .title = u"Downloaded Go packages and build results"_s,
                .what = u"Code libraries Go downloaded, and the results of earlier builds."_s,
                .regenerates = u"Downloaded and built again next time — one slow build per project. What Go's fuzz tests have learned starts from nothing."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/go-build"_s, u"Build results"_s },
                { u"go/pkg/mod"_s, u"Packages"_s },
            },
        },
        {
            .rule = {
                .id = u"js.stores"_s,
                .title = u"Shared JavaScript packages"_s,
                .what = u"Code packages that pnpm, Yarn, Bun, Deno and npx keep in one place for many projects."_s,
                .regenerates = u"Downloaded again by the next install. Until then some projects will not start, and because projects share these files less space may come back than shown."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".local/share/pnpm/store"_s, u"pnpm"_s },
                { u".pnpm-store"_s, u"pnpm, old place"_s },
                { u".cache/pnpm"_s, u"pnpm, lists"_s },
                { u".yarn/berry/cache"_s, u"Yarn"_s },
                { u".bun/install/cache"_s, u"Bun"_s },
                { u".cache/deno/npm"_s, u"Deno, from npm"_s },
                { u".cache/deno/remote"_s, u"Deno, from the web"_s },
                { u".cache/deno/gen"_s, u"Deno, prepared"_s },
                { u".npm/_npx"_s, u"npx"_s },
            },
        },
        {
            .rule = {
                .id = u"java.packages"_s,
                .title = u"Downloaded Java and Scala packages"_s,
                .what = u"Code libraries and build tools that Maven, Gradle, sbt, Coursier and Kotlin downloaded."_s,
                .regenerates = u"Re-downloaded on the next build — slow, and needs a good connection. Packages you built yourself and kept only in Maven's folder must be built again, and files you installed there by hand exist nowhere else."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".m2/repository"_s, u"Maven"_s },
                { u".gradle/wrapper/dists"_s, u"Gradle itself"_s },
                { u".gradle/jdks"_s, u"Java for Gradle"_s },
                { u".ivy2/cache"_s, u"Ivy"_s },
                { u".cache/coursier/v1"_s, u"Coursier"_s },
                { u".sbt/boot"_s, u"sbt"_s },
                { u".konan"_s, u"Kotlin/Native"_s },
            },
        },
        {
            .rule = {
                .id = u"language.packages"_s,
                .title = u"Downloaded packages for other languages"_s,
                .what = u"Code libraries kept by .NET, Haskell, Julia, R and Zig tools, some of them built on this computer."_s,
                .regenerates = u"Fetched or built again by the next restore. Projects that link to them stop working until then, as do programs you installed with Cabal, and building can take hours. Julia's Overrides.toml, if you wrote one, is in here and goes too."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".nuget/packages"_s, u".NET"_s },
                { u".cabal/packages"_s, u"Cabal, archives, old place"_s },
                { u".cabal/store"_s, u"Cabal, built, old place"_s },
                { u".cache/cabal/packages"_s, u"Cabal, archives"_s },
                { u".local/state/cabal/store"_s, u"Cabal, built"_s },
                { u".stack/pantry"_s, u"Stack, archives"_s },
                { u".stack/snapshots"_s, u"Stack, built"_s },
                { u".local/share/stack/pantry"_s, u"Stack, archives, new place"_s },
                { u".local/share/stack/snapshots"_s, u"Stack, built, new place"_s },
                { u".julia/packages"_s, u"Julia"_s },
                { u".julia/artifacts"_s, u"Julia, binaries"_s },
                { u".cache/R/renv/cache"_s, u"R"_s },
                { u".cache/zig"_s, u"Zig"_s },
            },
        },
        {
            .rule = {
                .id = u"build.results"_s,
                .title = u"Build results from C++ tools"_s,
                .what = u"Libraries and finished builds that vcpkg, Conan and Bazel keep outside your projects."_s,
                .regenerates = u"Built or downloaded again on the next build, which can take hours. Programs you built with Bazel live in here too."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/vcpkg/archives"_s, u"vcpkg"_s },
                { u".conan2/p"_s, u"Conan"_s },
                { u".conan/data"_s, u"Conan 1"_s },
                { u".cache/bazel"_s, u"Bazel"_s },
            },
        },
        {
            .rule = {
                .id = u"editor.indexes"_s,
                .title = u"Code editor indexes"_s,
                .what = u"Maps of your code that JetBrains editors, Android Studio and the C++ add-on of VS Code build so they can look things up."_s,
                .regenerates = u"Rebuilt when you next open a project, and an open window may need reloading. The Local History of JetBrains editors does not come back."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/JetBrains"_s, u"JetBrains"_s },
                { u".cache/Google"_s, u"Android Studio"_s },
                { u".var/app/com.jetbrains.IntelliJ-IDEA-Community/cache/JetBrains"_s, u"IntelliJ IDEA (Flatpak)"_s },
                { u".var/app/com.jetbrains.PyCharm-Community/cache/JetBrains"_s, u"PyCharm (Flatpak)"_s },
                { u".var/app/com.google.AndroidStudio/cache/Google"_s, u"Android Studio (Flatpak)"_s },
                { u".cache/vscode-cpptools"_s, u"VS Code for C++"_s },
            },
        },
        {
            .rule = {
                .id = u"test.browsers"_s,
                .title = u"Browsers for automated tests"_s,
                .what = u"Copies of Chromium, Firefox and WebKit downloaded by Playwright, Puppeteer, Cypress and Selenium."_s,
                .regenerates = u"Most do not come back by themselves. Tests fail until you run the tool's install command, which downloads them again."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/ms-playwright"_s, u"Playwright"_s },
                { u".cache/ms-playwright-go"_s, u"Playwright for Go"_s },
                { u".cache/puppeteer"_s, u"Puppeteer"_s },
                { u".cache/Cypress"_s, u"Cypress"_s },
                { u".cache/selenium"_s, u"Selenium"_s },
            },
        },
        {
            .rule = {
                .id = u"ai.huggingface"_s,
                .title = u"AI models from Hugging Face"_s,
                .what = u"AI models and data sets that programs downloaded to use on this computer."_s,
                .regenerates = u"Downloaded again when a program asks for them, often several gigabytes each. A model its maker has withdrawn is gone, and what your own programs worked out from a data set must be worked out again."_s,
                .safety = Safety::careful,
                .staleDays = 45,
            },
            .locations = {
                { u".cache/huggingface/hub"_s, u"Models"_s },
                { u".cache/huggingface/xet"_s, u"Pieces"_s },
                { u".cache/huggingface/datasets"_s, u"Data sets"_s },
            },
        },
        {
            .rule = {
                .id = u"ai.models"_s,
                .title = u"Other AI models"_s,
                .what = u"AI models kept by LM Studio, Alpaca, llama.cpp, ModelScope, Whisper and PyTorch."_s,
                .regenerates = u"Downloaded again on demand, often several gigabytes each. Models you added or trained yourself do not come back."_s,
                .safety = Safety::careful,
                .staleDays = 45,
            },
            .locations = {
                { u".lmstudio/models"_s, u"LM Studio"_s },
                { u".cache/lm-studio/models"_s, u"LM Studio, old place"_s },
                { u".var/app/com.jeffser.Alpaca/data/.ollama/models"_s, u"Alpaca (Flatpak)"_s },
                { u".cache/torch/hub"_s, u"PyTorch"_s },
                { u".cache/whisper"_s, u"Whisper"_s },
                { u".cache/llama.cpp"_s, u"llama.cpp"_s },
                { u".cache/modelscope/hub"_s, u"ModelScope"_s },
            },
        },
        {
            .rule = {
                .id = u"ai.compiled"_s,
                .title = u"Prepared parts of AI programs"_s,
                .what = u"Pieces of AI programs that Triton and vLLM prepared for your graphics card."_s,
                .regenerates = u"Prepared again the next time a program needs them, which can take many minutes. One that is running may stop, so close it first."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".triton/cache"_s, u"Triton"_s },
                { u".cache/vllm"_s, u"vLLM"_s },
            },
        },
        {
            .rule = {
                .id = u"debug.symbols"_s,
                .title = u"Debugging downloads"_s,
                .what = u"Details about system programs that the debugger downloaded to explain crashes."_s,
                .regenerates = u"Downloaded again the next time you debug, as long as the server still has them. Crashes of older versions may stay unexplained, and a connection is needed."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/debuginfod_client"_s, u"debuginfod"_s },
            },
        },
        {
            .rule = {
                .id = u"board.tools"_s,
                .title = u"Tools for programming boards"_s,
                .what = u"Compilers, libraries and helpers that PlatformIO, Arduino and ESP-IDF downloaded for your boards."_s,
                .regenerates = u"PlatformIO downloads them again on the next build. The others wait until you install the board or the tools again, and nothing builds until then. Changes you made to them are lost."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".platformio/packages"_s, u"PlatformIO"_s },
                { u".platformio/platforms"_s, u"PlatformIO, platforms"_s },
                { u".arduino15/packages"_s, u"Arduino"_s },
                { u".espressif/dist"_s, u"ESP-IDF, archives"_s },
                { u".espressif/tools"_s, u"ESP-IDF"_s },
                { u".espressif/python_env"_s, u"ESP-IDF, Python"_s },
            },
        },
    };
    // clang-format on
    return table;
}

} // namespace Quillbrook::LinuxCatalogue
