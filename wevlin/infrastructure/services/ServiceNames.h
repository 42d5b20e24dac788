#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SERVICENAMES_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SERVICENAMES_H_

// Wire names and interface versions of the standard services.
//
// A name has the form "tavo.wevlin.infrastructure.services." + area + "." +
// service + "." + side, where ".host" marks a service that the native side
// implements and the page calls, and ".client" one that the page implements
// and the host calls through a proxy. Two names break the form and are kept
// exactly as they are, because the page matches names by exact string: the
// log-forwarding service has no area word and the version-test service no side
// word. Some names are defined for the page's benefit and used by no class of
// this library.

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ServiceNames {

inline constexpr char kHostConfigurationHost[] =
    "tavo.wevlin.infrastructure.services.core.HostConfiguration.host";
inline constexpr char kStartupNotificationHost[] =
    "tavo.wevlin.infrastructure.services.startup.StartupNotification.host";
inline constexpr char kClientStatusHost[] =
    "tavo.wevlin.infrastructure.services.core.ClientStatus.host";
inline constexpr char kAsyncSoaJsonMessageHost[] =
    "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host";
// Defined for the page; no class of this library uses it.
inline constexpr char kSoaJsonRequestClient[] =
    "tavo.wevlin.infrastructure.services.soa.SoaJsonRequest.client";
inline constexpr char kHostSessionInfoHost[] =
    "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host";
inline constexpr char kRequestHostAuthHost[] =
    "tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host";
// Defined for the page; no class of this library uses it.
inline constexpr char kRequestHostAuthReplyClient[] =
    "tavo.wevlin.infrastructure.services.soa.RequestHostAuthReply.client";
inline constexpr char kSessionHost[] = "tavo.wevlin.infrastructure.services.session.Session.host";
inline constexpr char kSessionClient[] =
    "tavo.wevlin.infrastructure.services.session.Session.client";
inline constexpr char kRefreshHost[] = "tavo.wevlin.infrastructure.services.refresh.Refresh.host";
inline constexpr char kRefreshClient[] =
    "tavo.wevlin.infrastructure.services.refresh.Refresh.client";
// No side word: served by both sides under one name.
inline constexpr char kTestVersion[] = "tavo.wevlin.infrastructure.services.version.TestVersionSvc";
// No area word.
inline constexpr char kLoggerForwardHost[] =
    "tavo.wevlin.infrastructure.services.LoggerForward.host";
inline constexpr char kOpenLocationClient[] =
    "tavo.wevlin.infrastructure.services.openlocation.OpenLocation.client";
inline constexpr char kClientInfoClient[] =
    "tavo.wevlin.infrastructure.services.clientinfo.ClientInfo.client";
// Defined for the page; no class of this library uses them.
inline constexpr char kGetAvailableThemesClient[] =
    "tavo.wevlin.infrastructure.services.theme.GetAvailableThemes.client";
inline constexpr char kSetThemeClient[] =
    "tavo.wevlin.infrastructure.services.theme.SetTheme.client";

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ServiceNames

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ServiceVersions {

inline constexpr char k2014_02[] = "_2014_02";
inline constexpr char k2014_03[] = "_2014_03";
inline constexpr char k2014_07[] = "_2014_07";
// Used only by the raw asynchronous SOA reply.
inline constexpr char k2015_10[] = "_2015_10";
// Defined for the page; used by nothing in this library.
inline constexpr char k2016_04[] = "_2016_04";

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ServiceVersions

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SERVICENAMES_H_
