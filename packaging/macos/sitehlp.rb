# An example of a Homebrew formula, never tried on a Mac. Before it can be used, url and sha256 have to
# be those of a release.
class Sitehlp < Formula
  desc "Owner of an endpoint agent's site list, and the tool for it"
  homepage "https://example.invalid/sitehlp"
  url "https://example.invalid/sitehlp-0.1.0.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"
  license "Apache-2.0"

  depends_on "boost" => :build
  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on "nlohmann-json" => :build
  depends_on "spdlog" => :build
  depends_on "tomlplusplus" => :build
  depends_on "utf8cpp" => :build
  depends_on "curl"
  depends_on "expat"
  depends_on "openssl@3"
  depends_on "pugixml"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DSITEHLP_BUILD_TESTS=OFF",
           "-DSITEHLP_WARNINGS_AS_ERRORS=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    system bin/"sitelist", "--agent-dir", testpath/"agent", "init"
    assert_match version.to_s, shell_output("#{bin}/sitelist --version")
  end
end
