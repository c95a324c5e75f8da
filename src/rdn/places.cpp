// SPDX-License-Identifier: BSL-1.0

// Provinces, municipalities, streets.

#include <ruvo/exc.hpp>
#include <ruvo/identifiers.hpp>
#include <ruvo/rdn.hpp>

#include <iterator>
#include <utility>

#include "rdn/tables.hpp"

namespace ruvo::rdn {

namespace {

struct province_row {
  unsigned short thousands;  // of inhabitants
  const wchar_t* towns;      // divided by commas, the capital first
};

// Inhabitants: INE, census of population at 1 January 2022, rounded. Municipalities: INE, their official
// names. In the order of INE's codes of the provinces, which are the first digits of the postal codes
// (Correos).
// clang-format off
constexpr province_row provinces[] = {
    {333, L"Vitoria-Gasteiz,Laudio/Llodio,Amurrio,Agurain/Salvatierra,Oyón-Oion,Labastida/Bastida"},
    {386, L"Albacete,Hellín,Villarrobledo,Almansa,La Roda,Caudete"},
    {1901, L"Alicante/Alacant,Elche/Elx,Torrevieja,Orihuela,Benidorm,Alcoy/Alcoi,Elda,Villena"},
    {731, L"Almería,Roquetas de Mar,El Ejido,Níjar,Vícar,Adra,Huércal-Overa"},
    {158, L"Ávila,Arévalo,Arenas de San Pedro,Las Navas del Marqués,Candeleda,Piedrahíta"},
    {666, L"Badajoz,Mérida,Don Benito,Almendralejo,Villanueva de la Serena,Zafra,Montijo"},
    {1176, L"Palma,Calvià,Eivissa,Manacor,Llucmajor,Maó,Inca,Ciutadella de Menorca"},
    {5727, L"Barcelona,L'Hospitalet de Llobregat,Terrassa,Badalona,Sabadell,Mataró,Manresa,Vic"},
    {356, L"Burgos,Miranda de Ebro,Aranda de Duero,Briviesca,Medina de Pomar,Lerma"},
    {387, L"Cáceres,Plasencia,Navalmoral de la Mata,Coria,Miajadas,Trujillo"},
    {1245, L"Cádiz,Jerez de la Frontera,Algeciras,San Fernando,El Puerto de Santa María,Chiclana de la Frontera"},
    {587, L"Castelló de la Plana,Vila-real,Borriana/Burriana,Vinaròs,Benicarló,Almassora"},
    {492, L"Ciudad Real,Puertollano,Tomelloso,Alcázar de San Juan,Valdepeñas,Manzanares"},
    {773, L"Córdoba,Lucena,Puente Genil,Montilla,Priego de Córdoba,Cabra"},
    {1121, L"A Coruña,Santiago de Compostela,Ferrol,Narón,Oleiros,Carballo"},
    {196, L"Cuenca,Tarancón,Quintanar del Rey,San Clemente,Motilla del Palancar,Las Pedroñeras"},
    {787, L"Girona,Figueres,Blanes,Lloret de Mar,Olot,Salt,Palafrugell"},
    {921, L"Granada,Motril,Almuñécar,Armilla,Baza,Loja,Guadix"},
    {268, L"Guadalajara,Azuqueca de Henares,Alovera,El Casar,Cabanillas del Campo,Sigüenza"},
    {726, L"Donostia/San Sebastián,Irun,Errenteria,Eibar,Zarautz,Tolosa,Hernani"},
    {525, L"Huelva,Lepe,Almonte,Moguer,Ayamonte,Isla Cristina"},
    {224, L"Huesca,Monzón,Barbastro,Fraga,Jaca,Sabiñánigo"},
    {623, L"Jaén,Linares,Andújar,Úbeda,Martos,Alcalá la Real"},
    {448, L"León,Ponferrada,San Andrés del Rabanedo,Villaquilambre,Astorga,La Bañeza"},
    {439, L"Lleida,Balaguer,Tàrrega,Mollerussa,La Seu d'Urgell,Cervera"},
    {319, L"Logroño,Calahorra,Arnedo,Haro,Alfaro,Nájera"},
    {324, L"Lugo,Monforte de Lemos,Viveiro,Vilalba,Sarria,Foz"},
    {6750, L"Madrid,Móstoles,Alcalá de Henares,Fuenlabrada,Leganés,Getafe,Alcorcón,Torrejón de Ardoz"},
    {1717, L"Málaga,Marbella,Vélez-Málaga,Mijas,Fuengirola,Torremolinos,Antequera,Ronda"},
    {1531, L"Murcia,Cartagena,Lorca,Molina de Segura,Alcantarilla,Águilas,Yecla"},
    {664, L"Pamplona/Iruña,Tudela,Burlada/Burlata,Estella-Lizarra,Zizur Mayor/Zizur Nagusia,Tafalla"},
    {304, L"Ourense,Verín,O Barco de Valdeorras,O Carballiño,Xinzo de Limia,Barbadás"},
    {1004, L"Oviedo,Gijón,Avilés,Siero,Langreo,Mieres"},
    {159, L"Palencia,Aguilar de Campoo,Guardo,Venta de Baños,Villamuriel de Cerrato"},
    {1128, L"Las Palmas de Gran Canaria,Telde,Santa Lucía de Tirajana,Arrecife,Puerto del Rosario,Arucas"},
    {942, L"Pontevedra,Vigo,Vilagarcía de Arousa,Redondela,Cangas,Marín,Lalín"},
    {326, L"Salamanca,Béjar,Santa Marta de Tormes,Ciudad Rodrigo,Carbajosa de la Sagrada,Villamayor"},
    {1044, L"Santa Cruz de Tenerife,San Cristóbal de La Laguna,Arona,Adeje,La Orotava,Los Llanos de Aridane"},
    {585, L"Santander,Torrelavega,Castro-Urdiales,Camargo,Piélagos,Laredo"},
    {153, L"Segovia,Cuéllar,El Espinar,Real Sitio de San Ildefonso,Cantalejo,Palazuelos de Eresma"},
    {1948, L"Sevilla,Dos Hermanas,Alcalá de Guadaíra,Utrera,Mairena del Aljarafe,Écija,Carmona"},
    {89, L"Soria,Almazán,Ólvega,Ágreda,San Leonardo de Yagüe"},
    {822, L"Tarragona,Reus,Tortosa,El Vendrell,Cambrils,Valls,Salou"},
    {134, L"Teruel,Alcañiz,Andorra,Calamocha,Calanda,Alcorisa"},
    {711, L"Toledo,Talavera de la Reina,Illescas,Seseña,Torrijos,Quintanar de la Orden"},
    {2605, L"València,Torrent,Gandia,Paterna,Sagunto/Sagunt,Alzira,Xàtiva"},
    {520, L"Valladolid,Laguna de Duero,Medina del Campo,Arroyo de la Encomienda,Tordesillas,Peñafiel"},
    {1154, L"Bilbao,Barakaldo,Getxo,Portugalete,Santurtzi,Basauri,Durango"},
    {167, L"Zamora,Benavente,Toro,Morales del Vino,Villaralbo"},
    {967, L"Zaragoza,Calatayud,Utebo,Ejea de los Caballeros,Tarazona,Caspe"},
    {83, L"Ceuta"},
    {85, L"Melilla"},
};
// clang-format on
static_assert(std::size(provinces) == 52);

constexpr auto province_sums = [] {
  weight_sums<std::size(provinces)> out{};
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i != out.size(); ++i) out[i] = sum += provinces[i].thousands;
  return out;
}();

// Frequent names of streets.
constexpr std::wstring_view street_text =
    L"Mayor,Real,Nueva,de la Constitución,de España,de Andalucía,de Cervantes,de Goya,de Velázquez,de "
    L"Murillo,"
    L"del Sol,de la Luna,de la Fuente,de la Iglesia,de San Juan,de San Pedro,de San José,de Santa Ana,"
    L"del Carmen,del Pilar,de la Paz,de la Libertad,de Europa,de Madrid,de Barcelona,de Valencia,de Sevilla,"
    L"de Castilla,de Aragón,de Galicia,de Asturias,de Navarra,del Mar,del Río,de la Sierra,del Prado,"
    L"de las Flores,de los Olivos,de la Rosa,del Olmo,del Álamo,de los Pinos,de Colón,de Cristóbal Colón,"
    L"de Isabel la Católica,de Ramón y Cajal,de Miguel de Unamuno,de Antonio Machado,de Lope de Vega,"
    L"de Calderón de la Barca,de Federico García Lorca,de Rosalía de Castro,de Clara Campoamor,de Concepción "
    L"Arenal,"
    L"del Doctor Fleming,de Jaime I,del Cid,de Don Quijote,de la Estación,del Molino,del Mercado,de las Eras";
constexpr auto street_names = parts_of<parts_in(street_text)>(street_text);
constexpr const wchar_t* street_kinds[] = {L"Calle",   L"Calle",   L"Calle", L"Calle", L"Calle",
                                           L"Avenida", L"Avenida", L"Plaza", L"Paseo", L"Camino"};

/// One of the towns, the capital twice as often as each other one; the number is its place in the row.
std::pair<std::size_t, std::wstring_view> draw_town(generator& from, std::wstring_view towns) {
  const std::uint64_t drawn = from.below(parts_in(towns) + 1);
  const std::size_t number = drawn > 0 ? static_cast<std::size_t>(drawn - 1) : 0;
  for (std::size_t i = 0; i < number; ++i) towns.remove_prefix(towns.find(L',') + 1);
  return {number, towns.substr(0, towns.find(L','))};
}

place draw_place(generator& from, std::size_t index) {
  const identifiers::province& found = identifiers::provinces()[index];
  const auto [number, town] = draw_town(from, provinces[index].towns);
  place out{std::wstring(town), found.name, found.code};
  const std::uint64_t behind = number == 0 ? 1 + from.below(9) : 100 + from.below(890);
  for (const unsigned unit : {100U, 10U, 1U})
    out.postal_code += static_cast<wchar_t>(L'0' + behind / unit % 10);
  return out;
}

}  // namespace

place generator::any_place() { return draw_place(*this, draw_index(*this, province_sums)); }

place generator::place_in(int province) {
  if (province < 1 || province > static_cast<int>(std::size(provinces)))
    throw exc::BadArgument(L"provincia " + std::to_wstring(province));
  return draw_place(*this, static_cast<std::size_t>(province - 1));
}

std::wstring generator::municipality() { return any_place().municipality; }
std::wstring generator::province() { return any_place().province; }
std::wstring generator::postal_code() { return any_place().postal_code; }

std::wstring generator::street() {
  std::wstring out = draw_row(*this, street_kinds);
  (out += L' ') += draw_row(*this, street_names);
  (out += L", ") += std::to_wstring(1 + below(120));
  if (!chance(60)) return out;
  (out += L", ") += static_cast<wchar_t>(L'1' + below(8));
  (out += L".º ") += static_cast<wchar_t>(L'A' + below(4));
  return out;
}

bundle generator::address() {
  bundle out;
  out.reserve(4);
  out[L"via"] = street();
  const place where = any_place();
  out[L"codigo_postal"] = where.postal_code;
  out[L"municipio"] = where.municipality;
  out[L"provincia"] = where.province;
  return out;
}

}  // namespace ruvo::rdn
