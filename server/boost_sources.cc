// The compiled half of Asio and Beast, see BOOST_ASIO_SEPARATE_COMPILATION in CMakeLists.txt.
#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/beast/src.hpp>
