// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names of people, the most frequent first. How frequent they are: INE, statistics of names and surnames.

#include <string_view>

namespace ruvo::rdn {

// clang-format off
inline constexpr std::wstring_view men_text =
    L"Antonio,Manuel,José,Francisco,David,Juan,Javier,Daniel,José Antonio,Francisco Javier,José Luis,Carlos,"
    L"Alejandro,Jesús,Miguel,José Manuel,Rafael,Pablo,Miguel Ángel,Pedro,Ángel,Sergio,Fernando,José María,"
    L"Jorge,Luis,Alberto,Álvaro,Juan Carlos,Adrián,Diego,Juan José,Raúl,Iván,Juan Antonio,Rubén,Óscar,"
    L"Enrique,Ramón,Andrés,Juan Manuel,Santiago,Mario,Vicente,Joaquín,Víctor,Eduardo,Hugo,Roberto,Jaime,"
    L"Francisco José,Marcos,Ignacio,Ricardo,Alfonso,Jordi,Salvador,Guillermo,Gabriel,Marc,Gonzalo,Emilio,"
    L"Mohamed,Julio,Julián,Tomás,Martín,José Miguel,Lucas,Agustín,Nicolás,Félix,Samuel,Ismael,Cristian,Joan,"
    L"Héctor,Aitor,Alfredo,Juan Francisco,Josep,Iker,César,Mateo,Álex,Sebastián,Domingo,Gregorio,Rodrigo,"
    L"José Carlos,Alonso,Felipe,Lorenzo,Xavier,Mariano,Eugenio,Arturo,Germán,Isaac,Esteban,Bruno,Leo,"
    L"Gerardo,Borja,Izan,Eric,Darío,Jonathan,Albert,Pau,Antonio José,José Ramón,Valentín,Cristóbal,"
    L"Juan Luis,Juan Pablo,Juan Ramón,Christian,Pol,Eloy,Ernesto,Unai,Asier,Mikel,Jon,Ander,Oriol,Gerard,"
    L"Arnau,Aarón,Bernardo,Benito,Marcelino,Moisés,Abel,Saúl,Fermín,Gustavo,Isidro,Isidoro,Leandro,Matías,"
    L"Luis Miguel,Luis Alberto,Pedro José,Pascual,Rogelio,Teodoro,Simón,Elías,Enzo,Oliver,Gael,Marco,"
    L"Manuel Jesús,Jesús María,Eusebio,Florencio,Fidel,Claudio,Amador,Blas,Bartolomé,Clemente,Dionisio,"
    L"Emiliano,Evaristo,Ezequiel,Feliciano,Hilario,Iñaki,Íñigo,Kevin,Lázaro,Leonardo,Narciso,Noé,Norberto,"
    L"Octavio,Patricio,Ramiro,Severino";

inline constexpr std::wstring_view women_text =
    L"María Carmen,María,Carmen,Ana María,Laura,María Pilar,María Dolores,Isabel,Josefa,María Teresa,Ana,"
    L"Marta,Cristina,María Ángeles,Lucía,María Isabel,María José,Francisca,Antonia,Dolores,Sara,Paula,Elena,"
    L"María Luisa,Raquel,Rosa María,Pilar,Manuela,Concepción,María Jesús,Mercedes,Julia,Beatriz,Nuria,"
    L"Silvia,Alba,Irene,Rosario,Juana,Patricia,Teresa,Montserrat,Encarnación,Andrea,Rocío,Mónica,Rosa,"
    L"Alicia,María Mar,Sonia,Sandra,Marina,Ángela,Susana,Natalia,Yolanda,Margarita,María Josefa,Claudia,"
    L"Sofía,Eva,María Rosario,Inmaculada,Carla,María Mercedes,Ana Isabel,Noelia,Esther,Verónica,Nerea,"
    L"Carolina,Daniela,Martina,Inés,Eva María,Ángeles,María Victoria,Miriam,Lorena,Ana Belén,María Elena,"
    L"María Concepción,Victoria,Catalina,María Antonia,Lidia,Celia,Amparo,María Nieves,Fátima,Consuelo,"
    L"Ainhoa,Olga,Gloria,Clara,Emilia,María Soledad,Luisa,María Cristina,Alejandra,María Luz,Adriana,"
    L"Virginia,Lourdes,Josefina,Esperanza,Magdalena,Purificación,Aurora,Vanesa,Gema,Valeria,Blanca,Milagros,"
    L"Belén,Isabel María,Noa,Emma,Carlota,Jimena,Aitana,Candela,Olivia,Ariadna,Laia,Vega,Leire,Ane,Maite,"
    L"Itziar,Amaia,Begoña,Araceli,Asunción,Vicenta,Remedios,Trinidad,Matilde,Rafaela,Ramona,Nieves,Felisa,"
    L"Estela,Estefanía,Tamara,Jessica,Elisa,Eugenia,Elvira,Macarena,Leticia,Paloma,Almudena,Mireia,Mar,"
    L"Guadalupe,Iria,Jennifer,Abril,Adela,Agustina,Alma,Amalia,Amelia,Anabel,Aroa,Azucena,Bárbara,Berta,"
    L"Camila,Chloe,Covadonga,Cecilia,Diana,Edurne,Elsa,Fabiola,Fernanda,Genoveva,Helena,Hortensia,Julieta,"
    L"Lara,Leonor,Lola,Luna,Mariana,Marisol,Micaela,Naiara,Nora,Petra,Rebeca,Rita,Soledad,Tania,Triana,"
    L"Valentina,Yaiza";

inline constexpr std::wstring_view surname_text =
    L"García,Rodríguez,González,Fernández,López,Martínez,Sánchez,Pérez,Gómez,Martín,Jiménez,Hernández,Ruiz,"
    L"Díaz,Moreno,Muñoz,Álvarez,Romero,Gutiérrez,Alonso,Navarro,Torres,Domínguez,Ramos,Vázquez,Ramírez,Gil,"
    L"Serrano,Morales,Molina,Blanco,Suárez,Castro,Ortega,Delgado,Ortiz,Marín,Rubio,Núñez,Medina,Sanz,"
    L"Castillo,Iglesias,Cortés,Garrido,Santos,Guerrero,Lozano,Cano,Cruz,Méndez,Flores,Prieto,Herrera,Peña,"
    L"León,Márquez,Cabrera,Gallego,Calvo,Vidal,Campos,Reyes,Vega,Fuentes,Carrasco,Díez,Aguilar,Caballero,"
    L"Nieto,Santana,Vargas,Pascual,Giménez,Herrero,Hidalgo,Montero,Lorenzo,Santiago,Benítez,Durán,Ibáñez,"
    L"Arias,Mora,Ferrer,Carmona,Vicente,Rojas,Soto,Crespo,Román,Pastor,Velasco,Parra,Sáez,Moya,Bravo,Rivera,"
    L"Gallardo,Soler,Silva,Esteban,Pardo,Franco,Mendoza,Rivas,Lara,Merino,Espinosa,Izquierdo,Arroyo,Camacho,"
    L"Vera,Ríos,Sierra,Casado,Luque,Rey,Montes,Redondo,Galán,Carrillo,Segura,Otero,Heredia,Bernal,Soriano,"
    L"Robles,Palacios,Marcos,Martí,Macías,Valero,Contreras,Vila,Guerra,Varela,Pereira,Expósito,Benito,Bueno,"
    L"Andrés,Guillén,Roldán,Mateo,Mateos,Villar,Miranda,Menéndez,Aguilera,Escudero,Trujillo,Ávila,Rueda,"
    L"Estévez,Salas,Casas,Aranda,Blázquez,Jurado,Acosta,Abad,Plaza,Beltrán,Calderón,Padilla,Manzano,Conde,"
    L"Quintana,Cuesta,Simón,Gracia,Pacheco,Salazar,Serra,Paredes,Roca,Rico,Pons,Clemente,Bermúdez,Zamora,"
    L"Tomás,Maldonado,Santamaría,Alarcón,Costa,Barroso,Escribano,Ballesteros,Asensio,Cuenca,Correa,Valverde,"
    L"Sancho,Alba,Ros,Castaño,Lázaro,Millán,Cordero,Duarte,Lucas,Villanueva,Hurtado,Oliva,Toledo,Polo,"
    L"Pineda,Mesa,Tapia,Marco,Linares,Nicolás,Corral,Villalba,Montoya,Rincón,Quesada,Salvador,Galindo,"
    L"Bautista,Ponce,Luna,Pulido,Madrid,Burgos,Domingo,Saavedra,Cabello,Navas,Ventura,Escobar,Ochoa,Reina,"
    L"Bonilla,Ojeda,Castellano,Velázquez,Carballo,Belmonte,Sevilla,Arenas,Gimeno,Moral,Collado,Peralta,Sola,"
    L"Requena,Rosales,Muñiz,Sosa,Palomo,Zapata,Córdoba,Ballester,Cobo,Huertas,Sala,Lorente,Olivares,"
    L"Llorente,Castilla,Amador,Arribas,Valle,Ayala,Rosado,Acedo,Baena,Manrique,Cuevas,Caro,Solís,Bernabé,"
    L"Aragón,Barrera,Prado,Calero,Marrero,Rovira,Avilés,Vallejo,Montesinos,Pino,Cid,Bosch,Rivero,Guzmán,"
    L"Perea,Vela,Tejada,Quintero,Castellanos,Alfonso,Falcón,Morán,Cáceres,Alcaraz,Puig,Alcántara,Puente,"
    L"Catalán,Ocaña,Arjona,Arévalo,Ferreira,Frías,Porras,Pozo,Barrios,Leal,Godoy,Ariza,Aguirre,Cárdenas,"
    L"Cervantes,Chacón,Coll,Font,Gálvez,Maestre,Mejías,Mena,Miguel,Miralles,Montenegro,Muro,Naranjo,Nevado,"
    L"Nogales,Olmo,Ordóñez,Osorio,Palma,Páez,Peinado,Peláez,Pena,Peñalver,Piñeiro,Portillo,Pozuelo,Prats,"
    L"Puga,Pujol,Quirós,Rebollo,Recio,Regueiro,Requejo,Ribera,Riera,Roig,Rojo,Romera,Roselló,Sabater,Sáenz,"
    L"Salgado,Salinas,Salmerón,Samper,Sandoval,Sanjuán,Santacruz,Sastre,Seco,Segovia,Sempere,Sepúlveda,"
    L"Serna,Sevillano,Solano,Soria,Sotelo,Suero,Talavera,Tejedor,Tejero,Téllez,Tena,Tirado,Toro,Torre,"
    L"Torralba,Torrecilla,Tortosa,Tovar,Tur,Úbeda,Uceda,Ureña,Urbano,Uribe,Valdés,Valdivia,Valencia,Vallés,"
    L"Vaquero,Vara,Vegas,Velarde,Verdú,Vergara,Vilches,Villa,Villalobos,Villegas,Viñas,Yáñez,Yuste,Zabala,"
    L"Zafra,Zambrano,Zaragoza,Zarco,Zorrilla,Abellán,Adán,Aguado,Agudo,Alcalá,Alcalde,Alcázar,Alemán,"
    L"Almagro,Álamo,Amaya,Amor,Amorós,Antón,Aparicio,Aranguren,Arce,Armas,Arnau,Arranz,Arteaga,Ayuso,Azcona,"
    L"Badía,Báez,Ballesta,Barba,Barbero,Barrio,Barrientos,Bas,Bello,Benavente,Benavides,Berenguer,Bermejo,"
    L"Berrocal,Borrego,Bosque,Bustamante,Bustos,Caballé,Cabezas,Calleja,Calles,Cámara,Camino,Canales,"
    L"Cantero,Capdevila,Carbonell,Carmena,Carrera,Carretero,Carrión,Carvajal,Casals,Casanova,Castañeda,"
    L"Cebrián,Cerezo,Checa,Cifuentes,Colomer,Corrales,Cuadrado,Cuéllar,Cueto,Dávila,Del Valle,Diéguez,"
    L"Echevarría,Elizalde,Enríquez,Escolano,Espejo,Espino,Estrada,Fajardo,Feijoo,Ferrando,Figueroa,Fraile,"
    L"Fuster,Gascón,Gaspar,Granados,Grau,Guijarro,Haro,Hervás,Hierro,Holgado,Huerta,Infante,Jara,Jaén,Juan,"
    L"Lafuente,Larrañaga,Ledesma,Lemus,Llamas,Lobato,Losada,Lobo,Madrigal,Manso,Mansilla,Marqués,Mas,"
    L"Mayoral,Melero,Mellado,Merchán,Mir,Mohamed,Monge,Moreira,Murillo,Novoa,Olmedo,Orozco,Ortuño";
// clang-format on

}  // namespace ruvo::rdn
